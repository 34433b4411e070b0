#include "Elements.h"
#include "Reader.h"
#include "Schemas.h"
#include "Values.h"
#include "Writer.h"

#include <Legacy/If/ReturnCodes.h>
#include <Legacy/IfKit/FreshSchema.h>
#include <Legacy/IfKit/Json.h>

#include <algorithm>
#include <map>
#include <memory>
#include <ostream>
#include <utility>

namespace Legacy::IfKit {

using namespace If;
using namespace Detail;

namespace {

using InfoHolderPtr = boost::intrusive_ptr<InfoHolder const>;
using ItemHolderPtr = boost::intrusive_ptr<ItemHolder const>;
using ParameterPtr = boost::intrusive_ptr<InfoItemHolder const>;

/// An envelope with what a document says of a parameter beside its schema.
class ReadInfoHolder : public InfoHolder
{
public:
    ReadInfoHolder(InfoPtr const& info, std::string displayName, std::string description, std::string unit)
        : InfoHolder(info), m_displayName(std::move(displayName)), m_description(std::move(description)),
          m_unit(std::move(unit))
    {}

    std::string GetDisplayName() const override { return m_displayName; }
    std::string GetDescription() const override { return m_description; }
    std::string GetUnit() const override { return m_unit; }
    ReadInfoHolder* DeepCopy() const override
    {
        return new ReadInfoHolder(InfoPtr(GetInfo()->DeepCopy()), m_displayName, m_description, m_unit);
    }

private:
    std::string m_displayName;
    std::string m_description;
    std::string m_unit;
};

/// Runs what may refuse, and tells where that happened.
template<typename Step>
JsonOutcome_t Guarded(Step&& step)
{
    try {
        step();
    } catch (Refusal const& refusal) {
        return JsonFault_t{refusal.GetPointer(), 0, 0, 0, refusal.what()};
    }
    return std::nullopt;
}

// --- Writing -----------------------------------------------------------------------------------------------------

template<typename Make>
JsonOutcome_t WriteOne(std::ostream& os, JsonLayout_t layout, Make&& make)
{
    return Guarded([&] {
        Writer writer(os, layout);
        writer.Put(make());
        writer.Flush();
    });
}

json::object HeldSchemaForm(InfoHolder const& holder)
{
    auto const& info = *holder.GetInfo();
    json::object schema = SchemaForm(info);
    json::object& extra = schema[View(k_extra)].as_object();
    if (auto const description = holder.GetDescription(); !description.empty())
        schema["description"] = Put(description);
    if (auto const name = holder.GetDisplayName(); name != info.GetName())
        extra["displayName"] = Put(name);
    if (auto const unit = holder.GetUnit(); !unit.empty())
        extra["unit"] = Put(unit);
    return schema;
}

/// Writes the sections of a directory as a tree.
class DirectoryWriter
{
public:
    DirectoryWriter(Writer& writer, InfoItemDirectory const& directory, JsonContent_t content)
        : m_writer(writer), m_directory(directory), m_content(content)
    {
        // In the order of their ids, in which the parameters of a section stand side by side.
        directory.GetAllInfoItems(m_parameters);
    }

    void Write()
    {
        std::vector<SectionId> sections;
        m_directory.GetTopLevelSections(sections);
        m_writer.Begin('{');
        m_writer.Key("format");
        m_writer.Put(k_jsonFormat);
        WriteSections_(sections);
        m_writer.End('}');
    }

private:
    void WriteSections_(std::vector<SectionId> const& sections)
    {
        m_writer.Key("sections");
        m_writer.Begin('[');
        for (auto const& section : sections)
            WriteSection_(section);
        m_writer.End(']');
    }

    void WriteSection_(SectionId const& section)
    {
        m_writer.Begin('{');
        m_writer.Key("path");
        m_writer.Put(Put(section.GetSectionName()));
        m_writer.Key("id");
        m_writer.Put(Put(static_cast<unsigned int>(section.GetInfoItemSectionId())));
        WriteParameters_(section.GetInfoItemSectionId());
        std::vector<SectionId> below;
        m_directory.GetSubsections(section.GetInfoItemSectionId(), below);
        if (!below.empty())
            WriteSections_(below); // four levels at most
        m_writer.End('}');
    }

    void WriteParameters_(InfoItemSectionId const& section)
    {
        // All numbers of a section, from parameter 0 to the section's own, in which the last one may have been given.
        auto const first =
            std::lower_bound(m_parameters.begin(), m_parameters.end(), section.CreateInfoItemId(0U), ById_);
        auto const isHere = [&](ParameterPtr const& parameter) {
            return parameter->GetInfo()->GetInfo()->GetId() <= section && Counts_(*parameter);
        };
        bool isOpen = false;
        for (auto next = first; next != m_parameters.end() && (*next)->GetInfo()->GetInfo()->GetId() <= section; ++next)
        {
            if (!isHere(*next))
                continue;
            if (!std::exchange(isOpen, true)) {
                m_writer.Key("parameters");
                m_writer.Begin('[');
            }
            WriteParameter_(**next);
        }
        if (isOpen)
            m_writer.End(']');
    }

    bool Counts_(InfoItemHolder const& parameter) const
    {
        return m_content != JsonContent_t::Values || parameter.GetItem();
    }

    void WriteParameter_(InfoItemHolder const& parameter)
    {
        auto const& info = *parameter.GetInfo()->GetInfo();
        auto const* const item =
            parameter.GetItem() && m_content != JsonContent_t::Schemas ? parameter.GetItem()->GetItem().get() : nullptr;
        try {
            m_writer.Put(m_content == JsonContent_t::Values ? ByItself_(info, *item)
                                                            : WithSchema_(*parameter.GetInfo(), item));
        } catch (Refusal const& refusal) {
            throw Refusal({}, "parameter '" + info.GetName() + "': " + refusal.what());
        }
    }

    static json::value ByItself_(InfoBase const& info, ItemBase const& item)
    {
        json::object parameter{{"name", Put(info.GetName())}};
        for (auto& member : SelfForm(item))
            parameter.emplace(member.key(), std::move(member.value()));
        return parameter;
    }

    static json::value WithSchema_(InfoHolder const& holder, ItemBase const* item)
    {
        json::object parameter{{"schema", HeldSchemaForm(holder)}};
        if (!item)
            return parameter;
        auto const shape = ShapeOf(*item);
        if (shape.members != ShapeOf(*holder.GetInfo()).members)
            parameter["members"] = MembersOf(shape);
        parameter["value"] = BareForm(*item);
        return parameter;
    }

    static bool ById_(ParameterPtr const& parameter, unsigned int id)
    {
        return parameter->GetInfo()->GetInfo()->GetId() < id;
    }

    Writer& m_writer;
    InfoItemDirectory const& m_directory;
    JsonContent_t m_content;
    std::vector<ParameterPtr> m_parameters;
};

template<typename Map, typename Form>
void WriteMap(Writer& writer, std::string_view key, Map const& map, Form&& form)
{
    writer.Key(key);
    writer.Begin('[');
    for (auto const& [id, entry] : map)
        writer.Put(form(entry));
    writer.End(']');
}

// --- Reading -----------------------------------------------------------------------------------------------------

std::string TakeTextIf(Node const& node, std::string_view key)
{
    std::string text;
    if (node.Has(key))
        Take(node[key], text);
    return text;
}

InfoHolderPtr TakeHeldSchema(Node const& node)
{
    InfoPtr const info = FromSchemaForm(node);
    Node const extra = node[k_extra];
    std::string name = TakeTextIf(extra, "displayName");
    std::string description = TakeTextIf(node, "description");
    std::string unit = TakeTextIf(extra, "unit");
    if (name.empty() && description.empty() && unit.empty())
        return new InfoHolder(info);
    if (name.empty())
        name = info->GetName();
    return new ReadInfoHolder(info, std::move(name), std::move(description), std::move(unit));
}

/// Makes objects of the parts of a document and hands them on.
class PartsSink : public DocumentSink
{
public:
    explicit PartsSink(JsonParts_t const& parts) : m_parts(parts) {}

    void TakeSection(Node const& node) override
    {
        std::string path;
        Take(node["path"], path);
        SectionId const section(path, InfoItemSectionId(node["id"].Unsigned()));
        if (!section.IsValid())
            node.Refuse("the path and the id are not those of one section");
        Expect_(node, m_parts.section(section));
    }

    void TakeParameter(Node const& node) override
    {
        if (!node.Has("schema"))
            return TakeValue(node);
        ExpectKeys(node, {"schema", "members", "value"});
        auto const holder = TakeHeldSchema(node["schema"]);
        Expect_(node, m_parts.info(holder));
        if (!node.Has("value"))
            return;
        Shape_t shape = ShapeOf(*holder->GetInfo());
        if (node.Has("members"))
            shape.members = TakeMembers(node["members"]);
        TakeItem_(node, FromBareForm(node["value"], shape), {});
    }

    void TakeSchema(Node const& node) override { Expect_(node, m_parts.info(TakeHeldSchema(node))); }
    void TakeValue(Node const& node) override { TakeItem_(node, FromSelfForm(node), TakeTextIf(node, "name")); }

private:
    void TakeItem_(Node const& node, ItemPtr const& item, std::string const& name)
    {
        Expect_(node, m_parts.item(ItemHolderPtr(new ItemHolder(item)), name));
    }

    static void Expect_(Node const& node, std::string const& reason)
    {
        if (!reason.empty())
            node.Refuse(reason);
    }

    JsonParts_t const& m_parts;
};

/// Gathers the parts in a delta, and the names of values that come without a schema.
JsonOutcome_t ReadDelta(std::istream& is, InfoItemDirectoryDelta& delta, std::map<unsigned int, std::string>& names)
{
    auto const outcome = [](int code, char const* what) {
        return code == 0 ? std::string() : std::string("there is ") + what + " with this id already";
    };
    return ReadJson(
        is, JsonParts_t{[&](SectionId const& section) { return outcome(delta.AddSection(section), "a section"); },
                        [&](InfoHolderPtr const& info) { return outcome(delta.AddInfo(info), "a schema"); },
                        [&](ItemHolderPtr const& item, std::string const& name) {
                            names.emplace(item->GetItem()->GetId(), name);
                            return outcome(delta.AddItem(item), "a value");
                        }});
}

/// Enters a schema for each value that has none.
void CompleteSchemas(InfoItemDirectoryDelta& delta, std::map<unsigned int, std::string> const& names)
{
    for (auto const& [id, holder] : delta.GetItemHolderPtrMap_addMod()) {
        auto const& item = *holder->GetItem();
        if (delta.GetInfoHolderPtrMap_addMod().contains(id))
            continue;
        if (InfoPtr const info = FreshSchema(item.GetType(), item.GetNumericType(), id, names.at(id)))
            delta.AddInfo(InfoHolderPtr(new InfoHolder(info)));
    }
}

std::string Hex(unsigned int id)
{
    static constexpr char k_digits[] = "0123456789abcdef";
    std::string text = "0x";
    for (int shift = 28; shift >= 0; shift -= 4)
        text += k_digits[id >> shift & 0xF];
    return text;
}

/// Applies the parts one by one to a directory that is dropped if one of them does not fit.
JsonOutcome_t TryDelta(InfoItemDirectoryDelta const& delta)
{
    auto const refuse = [](std::string const& what, int code) {
        return JsonFault_t{{}, 0, 0, 0, what + " has no place in the directory, code " + std::to_string(code)};
    };
    InfoItemDirectory trial;
    for (auto const& [id, section] : delta.GetSectionIdMap_addMod()) {
        if (int const code = trial.AddSection(section))
            return refuse("section '" + ToUnicode(section.GetSectionName()) + "'", code);
    }
    for (auto const& [id, info] : delta.GetInfoHolderPtrMap_addMod()) {
        if (int const code = trial.AddInfo(info))
            return refuse("parameter '" + ToUnicode(info->GetInfo()->GetName()) + "' with the id " + Hex(id), code);
    }
    for (auto const& [id, item] : delta.GetItemHolderPtrMap_addMod()) {
        if (int const code = trial.SetItem(item))
            return refuse("the value with the id " + Hex(id), code);
    }
    return std::nullopt;
}

} // namespace

std::string JsonFault_t::ToString() const
{
    std::string text;
    if (line != 0)
        text =
            "byte " + std::to_string(offset) + ", line " + std::to_string(line) + ", column " + std::to_string(column);
    if (!pointer.empty())
        text += (text.empty() ? "at " : ", at ") + pointer;
    return text.empty() ? reason : text + ": " + reason;
}

JsonOutcome_t WriteJson(std::ostream& os, ItemBase const& item, JsonLayout_t layout)
{
    return WriteOne(os, layout, [&] { return SelfForm(item); });
}

JsonOutcome_t WriteBareJson(std::ostream& os, ItemBase const& item, JsonLayout_t layout)
{
    return WriteOne(os, layout, [&] { return BareForm(item); });
}

JsonOutcome_t WriteJson(std::ostream& os, InfoBase const& info, JsonLayout_t layout)
{
    return WriteOne(os, layout, [&] {
        json::object schema{{"$schema", "https://json-schema.org/draft/2020-12/schema"}};
        for (auto& word : SchemaForm(info))
            schema.emplace(word.key(), std::move(word.value()));
        return schema;
    });
}

JsonOutcome_t WriteJson(std::ostream& os, InfoItemDirectory const& directory, JsonContent_t content,
                        JsonLayout_t layout)
{
    return Guarded([&] {
        Writer writer(os, layout);
        DirectoryWriter(writer, directory, content).Write();
        writer.Flush();
    });
}

JsonOutcome_t WriteJson(std::ostream& os, InfoItemDirectoryDelta const& delta, JsonLayout_t layout)
{
    return Guarded([&] {
        Writer writer(os, layout);
        writer.Begin('{');
        writer.Key("format");
        writer.Put(k_jsonFormat);
        WriteMap(writer, "sections", delta.GetSectionIdMap_addMod(), [](SectionId const& section) {
            return json::object{{"path", Put(section.GetSectionName())},
                                {"id", static_cast<unsigned int>(section.GetInfoItemSectionId())}};
        });
        WriteMap(writer, "schemas", delta.GetInfoHolderPtrMap_addMod(),
                 [](InfoHolderPtr const& holder) { return HeldSchemaForm(*holder); });
        WriteMap(writer, "values", delta.GetItemHolderPtrMap_addMod(),
                 [](ItemHolderPtr const& holder) { return SelfForm(*holder->GetItem()); });
        writer.End('}');
        writer.Flush();
    });
}

JsonOutcome_t ReadJson(std::istream& is, boost::intrusive_ptr<ItemBase>& item)
{
    ItemPtr read;
    auto fault = ReadWhole(is, [&](Node const& node) { read = FromSelfForm(node); });
    if (!fault)
        item = std::move(read);
    return fault;
}

JsonOutcome_t ReadJson(std::istream& is, boost::intrusive_ptr<InfoBase>& info)
{
    InfoPtr read;
    auto fault = ReadWhole(is, [&](Node const& node) { read = FromSchemaForm(node); });
    if (!fault)
        info = std::move(read);
    return fault;
}

JsonOutcome_t ReadBareJson(std::istream& is, InfoBase const& info, boost::intrusive_ptr<ItemBase>& item)
{
    ItemPtr read;
    auto fault = ReadWhole(is, [&](Node const& node) { read = FromBareForm(node, ShapeOf(info)); });
    if (!fault)
        item = std::move(read);
    return fault;
}

JsonOutcome_t ReadJson(std::istream& is, JsonParts_t const& parts)
{
    PartsSink sink(parts);
    return ReadParts(is, sink);
}

JsonOutcome_t ReadJson(std::istream& is, InfoItemDirectoryDelta& delta)
{
    InfoItemDirectoryDelta read;
    std::map<unsigned int, std::string> names;
    auto fault = ReadDelta(is, read, names);
    if (!fault)
        delta = read;
    return fault;
}

JsonOutcome_t ReadJson(std::istream& is, InfoItemDirectory& directory)
{
    std::vector<SectionId> sections;
    directory.GetTopLevelSections(sections);
    if (!sections.empty() || !directory.Empty())
        return JsonFault_t{{}, 0, 0, 0, "the directory is not empty"};
    auto const delta = std::make_shared<InfoItemDirectoryDelta>();
    std::map<unsigned int, std::string> names;
    if (auto fault = ReadDelta(is, *delta, names))
        return fault;
    CompleteSchemas(*delta, names);
    auto fault = TryDelta(*delta);
    if (!fault)
        directory.UpdateFromDelta(delta, true, true); // as the trial did
    return fault;
}

} // namespace Legacy::IfKit
