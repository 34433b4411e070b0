#include "device/ValueStore.h"

#include "common/Program.h"
#include "common/Schemas.h"
#include "common/Topics.h"

#include <Legacy/If/InfoItemHolderDefs.h>
#include <Legacy/IfKit/Difference.h>
#include <Legacy/IfKit/RecordFile.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <iomanip>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

namespace Fleet {

using namespace Legacy::If;
using namespace Legacy::IfKit;

namespace {

/// What the device remembers stands under this id, before all other names. A parameter may have the id as well.
constexpr unsigned int k_memoryId = 0;
constexpr std::string_view k_sessionMark = "legacyif-device session ";
constexpr std::string_view k_answerMark = "legacyif-device answer ";

std::string SessionText(ValueStore::Memory_t const& memory)
{
    std::ostringstream text;
    text << k_sessionMark << std::hex << memory.lineage << ' ' << std::dec << memory.epoch;
    return text.str();
}

std::string AnswerText(std::string const& controller, AnswerMessage const& answer)
{
    std::ostringstream text;
    text << k_answerMark << controller << ' ' << std::hex << answer.session << std::dec << ' ' << answer.request << ' '
         << answer.code << ' ' << answer.text;
    return text.str();
}

bool TakeMemory(std::string_view text, ValueStore::Memory_t& memory)
{
    if (text.starts_with(k_sessionMark)) {
        std::istringstream in{std::string(text.substr(k_sessionMark.size()))};
        in >> std::hex >> memory.lineage >> std::dec >> memory.epoch;
        return true;
    }
    if (!text.starts_with(k_answerMark))
        return false;
    std::istringstream in{std::string(text.substr(k_answerMark.size()))};
    std::string controller;
    AnswerMessage answer;
    in >> controller >> std::hex >> answer.session >> std::dec >> answer.request >> answer.code;
    if (in && IsName(controller)) {
        in.get();
        answer.text.assign(std::istreambuf_iterator<char>(in), {});
        memory.answers.Restore(controller, answer);
    }
    return true;
}

void SetValue(Record_t const& record, InfoItemDirectory& directory)
{
    ItemPtr item;
    auto const info = directory.FindInfo(record.id);
    int code = info ? record.Rebuild(item) : IfErrNotFound;
    if (code == 0)
        code = directory.SetItem(new ItemHolder(item));
    if (code != 0)
        Log(Orlek::LogLevel_t::Warning, "a kept value has no place among the parameters: id " +
                                            std::to_string(record.id) + ", code " + std::to_string(code));
}

} // namespace

ValueStore::ValueStore(std::string path) : m_path(std::move(path))
{
    if (m_path.empty())
        return;
    auto const lock = m_path + ".lock";
    m_lock = open(lock.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (m_lock < 0)
        throw std::runtime_error(Printable(lock) + ": " + std::generic_category().message(errno));
    if (flock(m_lock, LOCK_EX | LOCK_NB) != 0) {
        close(m_lock);
        throw std::runtime_error(Printable(m_path) + ": another process keeps its values there");
    }
}

ValueStore::~ValueStore()
{
    if (m_lock >= 0)
        close(m_lock);
}

ValueStore::Memory_t ValueStore::Open(InfoItemDirectory& directory)
{
    Memory_t memory;
    if (IsDurable() && std::filesystem::exists(m_path)) {
        RecordFileReader reader(m_path);
        bool isAtStart = true;
        while (auto const entry = reader.NextEntry()) {
            if (auto const* const name = std::get_if<RecordFileName_t>(&*entry))
                isAtStart = isAtStart && name->id == k_memoryId && TakeMemory(name->text, memory);
            else
                SetValue(std::get<Record_t>(*entry), directory);
        }
        if (auto const& error = reader.GetError())
            throw std::runtime_error(error->ToText() + "; move the file away to begin with what the schemas say");
    }
    if (memory.lineage == 0)
        memory.lineage = RandomNumber();
    ++memory.epoch;
    if (auto const error = Save(directory, memory))
        throw std::runtime_error(*error);
    return memory;
}

std::optional<std::string> ValueStore::Save(InfoItemDirectory const& directory, Memory_t const& memory)
{
    if (!IsDurable())
        return {};
    RecordFileWriter writer(m_path);
    writer.AppendName(k_memoryId, SessionText(memory));
    memory.answers.ForEach([&](std::string const& controller, AnswerMessage const& answer) {
        writer.AppendName(k_memoryId, AnswerText(controller, answer));
    });
    for (auto const& section : AllSections(directory))
        writer.AppendName(section.GetInfoItemSectionId(), section.GetSectionName());
    std::vector<boost::intrusive_ptr<InfoItemHolder const>> parameters;
    directory.GetAllInfoItems(parameters);
    for (auto const& parameter : parameters)
        writer.AppendName(parameter->GetInfo()->GetInfo()->GetId(), parameter->GetInfo()->GetInfo()->GetName());
    for (auto const& parameter : parameters)
        if (parameter->GetItem())
            writer.Append(*parameter->GetItem()->GetItem()); // what has no record cannot be published either
    if (auto const error = writer.Commit())
        return error->ToText();
    return {};
}

} // namespace Fleet
