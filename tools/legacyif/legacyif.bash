# Completion of legacyif(1) for bash.
_legacyif() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} options='--help'
    if [ "$COMP_CWORD" = 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W 'show check json records diff explain get set --help --version' -- "$current")
        return
    fi
    case $previous in
    --language) mapfile -t COMPREPLY < <(compgen -W 'en de' -- "$current"); return ;;
    --format) mapfile -t COMPREPLY < <(compgen -W 'text json' -- "$current"); return ;;
    esac
    case ${COMP_WORDS[1]} in
    check | get) options+=' --schema --language --format' ;;
    show | diff | set) options+=' --schema --language' ;;
    json) options+=' --schema --compact' ;;
    records) options+=' --schema' ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -o filenames -F _legacyif legacyif
