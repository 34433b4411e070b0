#pragma once

#include <Legacy/If/InfoItemDirectory.h>

#include <string>
#include <vector>

namespace Command {

/// What is wrong with a value, or with a member of one.
struct Finding_t
{
    std::string path; ///< of the parameter, and of the member in it by indices: "port/stp/timer[0]"
    unsigned int id;  ///< of the parameter
    std::string key;  ///< of the message
    std::string message;
};

/// Holds a value against its schema. The families that validate nothing are asked whether the value lies within its
/// bounds or is in its table.
std::vector<Finding_t> FindingsOf(Legacy::If::InfoItemDirectory const& directory,
                                  Legacy::If::InfoItemHolder const& parameter, std::string const& language);

} // namespace Command
