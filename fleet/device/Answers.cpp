#include "device/Answers.h"

#include <algorithm>

namespace Fleet {

AnswerMessage const* Answers::Find(std::string const& controller, std::uint64_t request,
                                   std::function<AnswerMessage()> const& execute)
{
    auto known = m_last.find(controller);
    if (known == m_last.end() || request > known->second.answer.request) {
        AnswerMessage answer = execute();
        answer.request = request;
        if (known == m_last.end() && m_last.size() >= k_maxControllers)
            m_last.erase(std::min_element(m_last.begin(), m_last.end(), [](auto const& a, auto const& b) {
                return a.second.heard < b.second.heard;
            }));
        known = m_last.insert_or_assign(controller, Last_t{0, answer}).first;
    }
    known->second.heard = ++m_calls;
    return request == known->second.answer.request ? &known->second.answer : nullptr;
}

} // namespace Fleet
