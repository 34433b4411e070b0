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
/// A controller numbers the requests of a session upwards and sends the next one only when it has the answer to the
/// last, which it repeats until then. So the last answer is all that one has to keep.
class Answers
{
public:
    /// So many controllers are remembered; beyond, the one that was silent for longest is forgotten.
    static constexpr std::size_t k_maxControllers = 64;

    enum class State_t
    {
        New,      ///< to be executed; it is under way from now on
        UnderWay, ///< the answer will come
        Answered, ///< the answer is that of #Last
        Outdated, ///< nobody waits for it any more
    };

    /// What a request is that has arrived.
    State_t Look(std::string const& controller, std::uint64_t session, std::uint64_t request);

    /// The answer to the request of a controller that is under way; passed over if it is not the last one any more.
    void Finish(std::string const& controller, AnswerMessage const& answer);

    /// The last answer to a controller; an empty one if there is none.
    AnswerMessage Last(std::string const& controller) const;

    /// Goes through all that was answered, and takes it in again.
    /// @{
    void ForEach(std::function<void(std::string const& controller, AnswerMessage const& answer)> const& use) const;
    void Restore(std::string const& controller, AnswerMessage const& answer);
    /// @}

private:
    struct Last_t
    {
        std::uint64_t heard = 0; // when, in calls
        AnswerMessage answer;    // with session and request while it is under way
        bool isUnderWay = false;
    };

    Last_t& Slot_(std::string const& controller);

    std::map<std::string, Last_t> m_last; // by controller
    std::uint64_t m_calls = 0;
};

} // namespace Fleet
