# byte_list(result file form): the bytes of a file as the elements of an array in C++, each written as `form` with its two
# hexadecimal digits in place of @.
function(byte_list result file form)
    file(READ "${file}" bytes HEX)
    string(REGEX REPLACE "(................................)" "\\1\n    " bytes "${bytes}")
    string(REPLACE "\\" "\\\\" form "${form}")
    string(REPLACE "@" "\\1" form "${form}")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "${form}," bytes "${bytes}")
    set(${result} "${bytes}" PARENT_SCOPE)
endfunction()
