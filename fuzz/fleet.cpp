// Takes what comes from a broker: a line with the topic, and the payload behind it, on top of the schemas of a device.

#include "Input.h"
#include "common/Schemas.h"
#include "common/Topics.h"
#include "common/Wire.h"
#include "controller/Mirror.h"
#include "device/Templates.h"

#include <Legacy/If/InfoItemHolderDefs.h>

#include <algorithm>
#include <span>
#include <string>

using namespace Fleet;

namespace {

/// What is taken is written the same again.
template<auto decode>
void TryAs(std::span<unsigned char const> bytes)
{
    if (auto const message = decode(bytes)) {
        auto const again = Encode(*message);
        Require(std::equal(again.begin(), again.end(), bytes.begin(), bytes.end()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    auto const* const end = data + size;
    auto const* const line = std::find(data, end, '\n');
    std::span<unsigned char const> const payload(line == end ? end : line + 1, end);
    auto const topic = ParseTopic(std::string(data, line));
    if (!topic)
        return 0;
    Require(ToText(*topic) == std::string(data, line));
    for (auto const tryAs :
         {TryAs<DecodeAbout>, TryAs<DecodeTotal>, TryAs<DecodeClaim>, TryAs<DecodeAnswer>, TryAs<DecodeEcho>})
        tryAs(payload);
    static SchemasPtr const schemas = BuildTemplate("camera");
    switch (topic->kind) {
    case TopicKind_t::Schema: {
        std::string fault;
        auto const read = ReadSchemas(std::string(payload.begin(), payload.end()), fault);
        Require(read ? fault.empty() : !fault.empty());
        if (read)
            Mirror const mirror(read, {});
        break;
    }
    case TopicKind_t::Value: {
        Mirror mirror(schemas, {});
        auto const value = DecodeValue(payload);
        if (!value)
            break;
        mirror.Begin(value->lineage, 0);
        if (mirror.Apply(topic->path, *value) == Mirror::Outcome_t::Applied)
            Require(mirror.Directory().FindInfoItem(topic->path)->GetItem()->GetItem() == value->item &&
                    mirror.Agrees({value->lineage, value->sequence, value->sequence}));
        break;
    }
    case TopicKind_t::Set:
        if (auto const set = DecodeSet(payload))
            if (auto const info = schemas->delta->GetInfoHolderPtrMap_addMod().find(set->item->GetId());
                info != schemas->delta->GetInfoHolderPtrMap_addMod().end())
                Judge(*set->item, info->second->GetInfo());
        break;
    default:
        break;
    }
    return 0;
}
