#pragma once

#include <Orlek/Export.h>

#include <string>
#include <vector>

namespace Orlek {

/// A message on its way to a text: arguments are fed to it in order, and `{1}` in the message stands for the first.
///
/// A placeholder may occur anywhere and more than once; what looks only like one is text, and so is every argument. No
/// text is lost: a placeholder whose argument is missing stays visible, and an argument that the message has no
/// placeholder for is appended behind a blank.
/// One object belongs to one thread.
class ORLEK_API LocalizationHelper
{
public:
    explicit LocalizationHelper(std::string message);

    /// Feeds the next argument.
    LocalizationHelper& operator%(std::string const& argument);

    /// The finished message.
    std::string ToString() const;

    /// The same, so that a message can be used where a text is wanted.
    operator std::string() const { return ToString(); }

private:
    std::string m_message;
    std::vector<std::string> m_arguments;
};

} // namespace Orlek
