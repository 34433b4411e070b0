#pragma once

#include "common/Wire.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace Fleet {

/// What a device has answered to each controller last, so that no request is executed twice however often it arrives.
///
/// A controller numbers its requests upwards and sends the next one only when it has the answer to the last, which it
/// repeats until then. So the last answer is all that one has to keep.
class Answers
{
public:
    /// So many controllers are remembered; beyond, the one that was silent for longest is forgotten.
    static constexpr std::size_t k_maxControllers = 64;

    /// The answer to a request: what `execute` gives for a new one, and the same again for one that is repeated.
    /// @return null for an echo of an older request, which nobody waits for any more. Valid until the next call.
    AnswerMessage const* Find(std::string const& controller, std::uint64_t request,
                              std::function<AnswerMessage()> const& execute);

private:
    struct Last_t
    {
        std::uint64_t heard = 0; ///< when, in calls
        AnswerMessage answer;
    };

    std::map<std::string, Last_t> m_last; // by controller
    std::uint64_t m_calls = 0;
};

} // namespace Fleet
