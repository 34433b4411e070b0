#include "device/Device.h"

#include "common/Program.h"

#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/If/LocalizedString.h>
#include <Legacy/If/String.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/ValueText.h>

#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <utility>

namespace Fleet {

using namespace Legacy::If;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

/// A session's numbers: so many changes, and as many sessions as there are numbers left.
constexpr unsigned int k_epochShift = 40;
/// How long the one that has the name has to say so.
constexpr auto k_claimTime = 2s;
/// How long the broker has to send a claim back that it has taken.
constexpr auto k_echoTime = 3s;
/// How long after a change the sum is told, at first after a connect and later.
/// @{
constexpr auto k_firstTotalTime = 1s;
constexpr auto k_totalTime = 10s;
/// @}
/// So many messages are on their way at once; what changes meanwhile waits, each value once.
constexpr std::size_t k_window = 256;

/// The schemas with their defaults as values.
std::string DocumentOf(Schemas_t const& schemas)
{
    InfoItemDirectory directory;
    if (int const code = directory.UpdateFromDelta(schemas.delta, true, false))
        throw std::runtime_error("the schemas make no directory, code " + std::to_string(code));
    return WriteSchemas(directory);
}

LocalizedString Message(std::string const& key, std::string const& argument)
{
    LocalizedString message(key);
    message.AddArgument(StringItem::Create(0, argument));
    return message;
}

} // namespace

Device::Device(boost::asio::io_context& context, Settings_t settings, SchemasPtr schemas,
               std::function<void(End_t)> end)
    : m_settings(std::move(settings)), m_schemas(std::move(schemas)), m_document(DocumentOf(*m_schemas)),
      m_end(std::move(end)), m_instance(RandomNumber()), m_store(m_settings.values), m_sequences(m_schemas->ids.size()),
      m_isQueued(m_schemas->ids.size()), m_claimTimer(context), m_saveTimer(context), m_totalTimer(context),
      m_session(context, m_settings.broker, "legacyif-device-" + m_settings.name + '-' + std::to_string(m_instance),
                {.connected = [this] { Connected_(); },
                 .disconnected =
                     [this](std::string const& reason) {
                         m_state = State_t::Away;
                         m_claimTimer.cancel();
                         Say_("no connection: " + Printable(reason));
                     },
                 .message = [this](Message_t const& message) { Handle_(message); },
                 .acknowledged = [this] { Acknowledged_(); },
                 .denied = [this] { GiveUp_(End_t::Denied); }})
{
    UpdateFromDelta(m_schemas->delta, true, false);
    for (auto const& [id, info] : m_schemas->delta->GetInfoHolderPtrMap_addMod())
        if (PlaceOf_(id) == m_sequences.size())
            Log(Orlek::LogLevel_t::Warning, m_settings.name + ": values of this type have no record and stay here: " +
                                                Printable(info->GetInfo()->GetName()));
    for (unsigned int const id : m_schemas->ids)
        SetItem(new ItemHolder(FindInfo(id)->GetInfo()->CreateItem()));
    m_memory = m_store.Open(*this);
    // All that was told before this session has smaller numbers, whatever the clocks say.
    m_first = m_memory.epoch << k_epochShift;
    m_last = m_first;
    for (auto& sequence : m_sequences)
        sequence = ++m_last;
    m_isUnsaved = false;
    m_session.SetWill(Topic_(TopicKind_t::About),
                      Encode(AboutMessage{false, m_instance, m_memory.lineage, m_first, m_settings.title}));
    if (m_settings.gate)
        m_session.SetGate(m_settings.gate);
}

void Device::Start() { m_session.Start(); }

void Device::Stop(std::function<void()> done)
{
    m_totalTimer.cancel();
    m_claimTimer.cancel();
    m_saveTimer.cancel();
    if (m_isUnsaved || !m_pending.empty())
        Save_();
    if (m_state == State_t::Holding) {
        while (!m_outbox.empty()) {
            auto const before = m_outbox.size();
            Pump_();
            if (m_outbox.size() == before)
                break;
        }
        PublishAbout_(false);
    }
    m_session.Stop(std::move(done));
}

int Device::Change(ItemPtr const& item)
{
    auto const known = FindItem(item->GetId());
    return known && known->GetItem()->IsEqualValue(item) ? 0 : SetItem(new ItemHolder(item));
}

void Device::ItemChanged_(boost::intrusive_ptr<ItemHolder const> const&,
                          boost::intrusive_ptr<InfoItemHolder const> const& parameter)
{
    auto const place = PlaceOf_(parameter->GetInfo()->GetInfo()->GetId());
    if (m_memory.epoch == 0 || place == m_sequences.size())
        return; // not open yet
    m_sequences[place] = ++m_last;
    if (m_isExecuting && m_store.IsDurable()) {
        m_held.insert(place);
    } else {
        if (!m_held.contains(place))
            Queue_(place);
        m_isUnsaved = true;
        if (m_store.IsDurable())
            SaveSoon_(k_writeBehind);
    }
    if (!std::exchange(m_isTotalDue, true)) {
        m_totalTimer.expires_after(m_totalDelay);
        m_totalDelay = std::min<std::chrono::milliseconds>(2 * m_totalDelay, k_totalTime);
        m_totalTimer.async_wait([this](boost::system::error_code const& error) {
            if (error)
                return;
            m_isTotalDue = false;
            m_outbox.emplace_back(Total_t{});
            Pump_();
        });
    }
}

std::size_t Device::PlaceOf_(unsigned int id) const
{
    auto const& ids = m_schemas->ids;
    auto const found = std::lower_bound(ids.begin(), ids.end(), id);
    return found != ids.end() && *found == id ? static_cast<std::size_t>(found - ids.begin()) : ids.size();
}

std::string Device::Topic_(TopicKind_t kind, std::string const& controller, std::string const& path) const
{
    return ToText({kind, m_settings.name, controller, path});
}

void Device::Say_(std::string const& text) const
{
    if (!m_settings.isQuiet)
        std::cout << text << std::endl;
}

/// Asks whether somebody else has the name. The broker first tells what it remembers of that, then sends the claim
/// back.
void Device::Connected_()
{
    Say_("connected to " + m_settings.broker.ToText());
    m_state = State_t::Claiming;
    m_isContested = false;
    m_isEchoed = false;
    m_outbox.clear();
    m_told.assign(m_sequences.size(), 0);
    m_toldLast = m_first;
    m_toldSum = 0;
    m_isQueued.assign(m_isQueued.size(), false);
    m_session.Subscribe({Topic_(TopicKind_t::About), Topic_(TopicKind_t::Claim)});
    PublishClaim_();
}

/// The broker has the claim. Some brokers take what a user may not publish, and send it to nobody.
void Device::Acknowledged_()
{
    if (m_state != State_t::Claiming)
        return Pump_();
    if (m_isEchoed)
        return;
    m_claimTimer.expires_after(k_echoTime);
    m_claimTimer.async_wait([this](boost::system::error_code const& error) {
        if (!error && m_state == State_t::Claiming)
            GiveUp_(End_t::Denied);
    });
}

void Device::PublishClaim_() { m_session.Publish(Topic_(TopicKind_t::Claim), Encode(ClaimMessage{m_instance}), false); }

void Device::PublishAbout_(bool isOnline)
{
    m_session.Publish(Topic_(TopicKind_t::About),
                      Encode(AboutMessage{isOnline, m_instance, m_memory.lineage, m_first, m_settings.title}), true);
}

void Device::Handle_(Message_t const& message)
{
    auto const topic = ParseTopic(message.topic);
    bool isGood = false;
    if (topic && topic->device == m_settings.name && message.payload.size() <= k_maxMessage) {
        if (topic->kind == TopicKind_t::About)
            isGood = HandleAbout_(message);
        else if (topic->kind == TopicKind_t::Claim)
            isGood = HandleClaim_(message);
        else if (topic->kind == TopicKind_t::Set)
            isGood = HandleSet_(*topic, message);
    }
    if (!isGood)
        Log(Orlek::LogLevel_t::Warning, "dropped a damaged or foreign message: " + Printable(message.topic));
}

bool Device::HandleAbout_(Message_t const& message)
{
    auto const about = DecodeAbout(message.payload);
    if (!about) {
        // Nobody shall believe it.
        if (m_state == State_t::Holding && !message.isRetained)
            PublishAbout_(true);
        return false;
    }
    if (about->instance == m_instance)
        return true;
    if (m_state == State_t::Claiming && about->online) {
        if (!message.isRetained)
            GiveUp_(End_t::NameTaken);
        m_isContested = true;
    } else if (m_state == State_t::Holding) {
        // Somebody else believes to have the name, or has left it: of two, the one with the smaller number stays.
        if (about->online && about->instance < m_instance)
            GiveUp_(End_t::NameTaken);
        else
            PublishAbout_(true);
    }
    return true;
}

bool Device::HandleClaim_(Message_t const& message)
{
    auto const claim = DecodeClaim(message.payload);
    if (!claim)
        return false;
    if (claim->instance != m_instance) {
        if (m_state == State_t::Holding)
            PublishAbout_(true);
        else if (m_state == State_t::Claiming && claim->instance < m_instance)
            GiveUp_(End_t::NameTaken);
        return true;
    }
    if (m_state != State_t::Claiming)
        return true;
    m_isEchoed = true;
    if (!m_isContested) {
        Hold_();
        return true;
    }
    // It may have gone without a word.
    m_claimTimer.expires_after(k_claimTime);
    m_claimTimer.async_wait([this](boost::system::error_code const& error) {
        if (!error && m_state == State_t::Claiming)
            Hold_();
    });
    return true;
}

void Device::GiveUp_(End_t why)
{
    if (m_state == State_t::Away)
        return;
    m_state = State_t::Away;
    m_claimTimer.cancel();
    m_end(why);
}

/// The name is this device's. The broker may have lost everything, so it gets everything.
void Device::Hold_()
{
    m_state = State_t::Holding;
    m_session.Subscribe({Filter(TopicKind_t::Set, m_settings.name, k_anyName)});
    PublishAbout_(true);
    m_session.Publish(Topic_(TopicKind_t::Schema),
                      {reinterpret_cast<unsigned char const*>(m_document.data()), m_document.size()}, true);
    for (std::size_t place = 0; place < m_sequences.size(); ++place)
        if (!m_held.contains(place))
            Queue_(place);
    m_outbox.emplace_back(Total_t{});
    // While controllers come back, sums are soon out of date.
    m_totalDelay = k_firstTotalTime;
    Pump_();
}

void Device::Queue_(std::size_t place)
{
    if (m_state != State_t::Holding || m_isQueued[place])
        return;
    m_isQueued[place] = true;
    m_outbox.emplace_back(place);
    Pump_();
}

void Device::Pump_()
{
    while (m_state == State_t::Holding && !m_outbox.empty() && m_session.Unacknowledged() < k_window) {
        auto const entry = std::move(m_outbox.front());
        m_outbox.pop_front();
        if (auto const* const place = std::get_if<std::size_t>(&entry)) {
            m_isQueued[*place] = false;
            PublishValue_(*place);
        } else if (auto const* const answer = std::get_if<Answer_t>(&entry)) {
            m_session.Publish(Topic_(TopicKind_t::Answer, answer->controller), Encode(answer->message), false);
        } else {
            PublishTotal_();
        }
    }
}

/// A value keeps its number however often it is published: who has it already takes no notice.
void Device::PublishValue_(std::size_t place)
{
    auto const parameter = FindInfoItem(m_schemas->ids[place]);
    auto const message = Encode(ValueMessage{m_memory.lineage, m_sequences[place], parameter->GetItem()->GetItem()});
    auto const path = Legacy::IfKit::PathOf(*this, *parameter->GetInfo()->GetInfo());
    if (message.size() <= k_maxMessage) {
        m_session.Publish(Topic_(TopicKind_t::Value, {}, path), message, true);
        m_toldSum += m_sequences[place] - m_told[place];
        m_told[place] = m_sequences[place];
        m_toldLast = std::max(m_toldLast, m_sequences[place]);
    } else {
        Log(Orlek::LogLevel_t::Error, m_settings.name + ": the value is too large to be published: " + Printable(path));
    }
}

/// Of what stands before it: a controller that has it all agrees.
void Device::PublishTotal_()
{
    m_session.Publish(Topic_(TopicKind_t::Total), Encode(TotalMessage{m_memory.lineage, m_toldLast, m_toldSum}), true);
}

bool Device::HandleSet_(Topic_t const& topic, Message_t const& message)
{
    auto const set = DecodeSet(message.payload);
    if (!set || m_state != State_t::Holding)
        return set.has_value();
    switch (m_memory.answers.Look(topic.controller, set->session, set->request)) {
    case Answers::State_t::New:
        Execute_(topic, *set);
        break;
    case Answers::State_t::Answered:
        m_outbox.emplace_back(Answer_t{topic.controller, m_memory.answers.Last(topic.controller)});
        Pump_();
        break;
    case Answers::State_t::UnderWay:
    case Answers::State_t::Outdated:
        break;
    }
    return true;
}

/// Tests the wish against the schema, as the device alone may judge, and fulfils it.
void Device::Execute_(Topic_t const& topic, SetMessage const& message)
{
    AnswerMessage answer{message.session, message.request, IfErrInvalidArgument, {}};
    auto const parameter = FindInfoItem(topic.path);
    if (!parameter || parameter->GetInfo()->GetInfo()->GetId() != message.item->GetId()) {
        answer.code = IfErrNotFound;
        return Refuse_(topic.controller, answer, Message("FleetUnknownParameter", topic.path), message.language);
    }
    auto const& info = parameter->GetInfo()->GetInfo();
    if (!IsWritable(*info))
        return Refuse_(topic.controller, answer, Message("FleetReadOnlyParameter", info->GetName()), message.language);
    if (auto const finding = Judge(*message.item, info); finding.IsValid())
        return Refuse_(topic.controller, answer, finding, message.language);
    auto const former = parameter->GetItem();
    // A value of another type passes in the families that bound nothing, and is refused here.
    bool const isSame = former && former->GetItem()->IsEqualValue(message.item);
    m_isExecuting = true;
    int const code = isSame ? 0 : SetItem(new ItemHolder(message.item));
    m_isExecuting = false;
    if (code != 0) {
        answer.code = code;
        return Refuse_(topic.controller, answer, Message("FleetOutsideBounds", info->GetName()), message.language);
    }
    if (!isSame)
        Say_(topic.controller + " sets " + Printable(topic.path) + ": " +
             Legacy::IfKit::ValueText(*parameter->GetInfo(), *message.item));
    answer.code = 0;
    // What is the same may be so by a wish that is not on the disk yet, and its answer must be remembered there.
    if (!m_store.IsDurable())
        return Answer_({topic.controller, answer});
    m_pending.push_back({{topic.controller, answer}, message.language, parameter, isSame ? nullptr : former});
    SaveSoon_(k_groupTime);
}

void Device::Refuse_(std::string const& controller, AnswerMessage answer, LocalizedString const& why,
                     std::string const& language)
{
    Say_(controller + " is refused: " + Printable(why.GetString({})));
    answer.text = why.GetString(language);
    Answer_({controller, std::move(answer)});
}

void Device::Answer_(Answer_t answer)
{
    m_memory.answers.Finish(answer.controller, answer.message);
    m_outbox.emplace_back(std::move(answer));
    Pump_();
}

/// Sees to it that everything is on the disk when so much time has passed.
void Device::SaveSoon_(std::chrono::milliseconds time)
{
    auto const at = Clock::now() + time;
    if (at >= m_saveAt)
        return;
    m_saveAt = at;
    m_saveTimer.expires_at(at);
    m_saveTimer.async_wait([this](boost::system::error_code const& error) {
        if (!error)
            Save_();
    });
}

/// Brings everything to the disk, and then tells of the wishes that are fulfilled by that.
void Device::Save_()
{
    m_saveAt = Clock::time_point::max();
    auto const pending = std::exchange(m_pending, {});
    for (auto const& wish : pending)
        m_memory.answers.Finish(wish.answer.controller, wish.answer.message);
    auto const error = m_store.Save(*this, m_memory);
    if (error) {
        Log(Orlek::LogLevel_t::Error, m_settings.name + ": values cannot be kept: " + *error);
        // As it was, the last change first. These wishes are not fulfilled.
        m_isExecuting = true;
        for (auto wish = pending.rbegin(); wish != pending.rend(); ++wish)
            if (wish->former)
                SetItem(wish->former);
        m_isExecuting = false;
        m_isUnsaved = true;
        SaveSoon_(k_writeBehind);
    } else {
        m_isUnsaved = false;
    }
    for (auto const place : std::exchange(m_held, {}))
        Queue_(place);
    for (auto const& wish : pending) {
        if (!error) {
            Answer_(wish.answer);
            continue;
        }
        auto answer = wish.answer.message;
        answer.code = IfErrInvalidArgument;
        Refuse_(wish.answer.controller, answer,
                Message("FleetNotKept", wish.parameter->GetInfo()->GetInfo()->GetName()), wish.language);
    }
}

} // namespace Fleet
