#include "device/Answers.h"

#include <algorithm>

namespace Fleet {

Answers::Last_t& Answers::Slot_(std::string const& controller)
{
    if (!m_last.contains(controller) && m_last.size() >= k_maxControllers)
        m_last.erase(std::min_element(m_last.begin(), m_last.end(),
                                      [](auto const& a, auto const& b) { return a.second.heard < b.second.heard; }));
    auto& last = m_last[controller];
    last.heard = ++m_calls;
    return last;
}

Answers::State_t Answers::Look(std::string const& controller, std::uint64_t session, std::uint64_t request)
{
    bool const isKnown = m_last.contains(controller);
    auto& last = Slot_(controller);
    if (isKnown && last.answer.session == session && request <= last.answer.request) {
        if (request < last.answer.request)
            return State_t::Outdated;
        return last.isUnderWay ? State_t::UnderWay : State_t::Answered;
    }
    last.answer = {session, request, 0, {}};
    last.isUnderWay = true;
    return State_t::New;
}

void Answers::Finish(std::string const& controller, AnswerMessage const& answer)
{
    auto const last = m_last.find(controller);
    if (last == m_last.end() || last->second.answer.session != answer.session ||
        last->second.answer.request != answer.request)
        return;
    last->second.answer = answer;
    last->second.isUnderWay = false;
}

AnswerMessage Answers::Last(std::string const& controller) const
{
    auto const last = m_last.find(controller);
    return last == m_last.end() ? AnswerMessage{} : last->second.answer;
}

void Answers::ForEach(std::function<void(std::string const&, AnswerMessage const&)> const& use) const
{
    for (auto const& [controller, last] : m_last)
        if (!last.isUnderWay)
            use(controller, last.answer);
}

void Answers::Restore(std::string const& controller, AnswerMessage const& answer)
{
    auto& last = Slot_(controller);
    last.answer = answer;
    last.isUnderWay = false;
}

} // namespace Fleet
