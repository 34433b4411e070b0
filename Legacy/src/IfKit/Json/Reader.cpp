#include "Reader.h"

#include "Numbers.h"

#include <boost/json/array.hpp>
#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/object.hpp>

#include <algorithm>
#include <istream>
#include <memory>
#include <span>
#include <utility>

namespace Legacy::IfKit::Detail {

namespace {

constexpr std::size_t k_chunkSize = std::size_t{64} * 1024;

/// Builds one value out of what the parser meets.
class Builder
{
public:
    /// What is put next becomes a document of its own.
    explicit Builder(std::string pointer) : m_pointer(std::move(pointer)) {}

    void Begin(json::value container) { m_open.push_back({std::move(container), {}, 0}); }
    void Key(std::string key) { m_open.back().key = std::move(key); }

    void End()
    {
        json::value done = std::move(m_open.back().container);
        m_open.pop_back();
        Put(std::move(done));
    }

    void Put(json::value value)
    {
        if (m_open.empty()) {
            m_done = std::move(value);
            return;
        }
        auto& [container, key, index] = m_open.back();
        if (auto* const array = container.if_array())
            array->push_back(std::move(value));
        else if (!container.get_object().emplace(key, std::move(value)).second)
            throw Refusal(PointerTo_(m_open.size() - 1), "'" + key + "' stands there twice");
        ++index;
    }

    /// The place of what comes next.
    std::string Pointer() const { return PointerTo_(m_open.size()); }

    bool IsDone() const noexcept { return m_open.empty(); }
    Node Done() const { return Node(m_done, m_pointer); }

private:
    struct Open_t
    {
        json::value container;
        std::string key;
        std::size_t index;
    };

    std::string PointerTo_(std::size_t depth) const
    {
        std::string pointer = m_pointer;
        for (std::size_t i = 0; i < depth; ++i) {
            auto const& [container, key, index] = m_open[i];
            AppendToPointer(pointer, container.is_array() ? std::to_string(index) : key);
        }
        return pointer;
    }

    std::string m_pointer;
    std::vector<Open_t> m_open;
    json::value m_done;
};

/// What the parser calls. The outer parts of a document are followed; each part inside is built, handed on and dropped.
class Handler
{
public:
    // The greatest sizes of what is held in memory.
    static constexpr std::size_t max_object_size = 4096;
    static constexpr std::size_t max_array_size = 1 << 24;
    static constexpr std::size_t max_key_size = 1 << 12;
    static constexpr std::size_t max_string_size = 1 << 26;

    explicit Handler(std::function<void(Node const&)> const& take) : m_take(&take) {}
    explicit Handler(DocumentSink& sink) : m_sink(&sink) {}

    std::optional<Refusal> const& GetRefusal() const noexcept { return m_refusal; }

    bool on_document_begin(json::error_code&) { return true; }
    bool on_document_end(json::error_code&) { return true; }
    bool on_comment_part(json::string_view, json::error_code&) { return true; }
    bool on_comment(json::string_view, json::error_code&) { return true; }

    bool on_object_begin(json::error_code& ec)
    {
        return Guarded_(ec, [&] { Begin_(json::object()); });
    }
    bool on_array_begin(json::error_code& ec)
    {
        return Guarded_(ec, [&] { Begin_(json::array()); });
    }
    bool on_object_end(std::size_t, json::error_code& ec)
    {
        return Guarded_(ec, [&] { End_(); });
    }
    bool on_array_end(std::size_t, json::error_code& ec)
    {
        return Guarded_(ec, [&] { End_(); });
    }

    bool on_key_part(json::string_view part, std::size_t, json::error_code&) { return Gather_(part); }
    bool on_string_part(json::string_view part, std::size_t, json::error_code&) { return Gather_(part); }
    bool on_number_part(json::string_view part, json::error_code&) { return Gather_(part); }

    bool on_key(json::string_view last, std::size_t, json::error_code& ec)
    {
        Gather_(last);
        return Guarded_(ec, [&] { Key_(std::exchange(m_text, {})); });
    }
    bool on_string(json::string_view last, std::size_t, json::error_code& ec)
    {
        Gather_(last);
        return Guarded_(ec, [&] { Put_(json::value(std::exchange(m_text, {}))); });
    }
    bool on_int64(std::int64_t, json::string_view last, json::error_code& ec) { return Number_(last, ec); }
    bool on_uint64(std::uint64_t, json::string_view last, json::error_code& ec) { return Number_(last, ec); }
    bool on_double(double, json::string_view last, json::error_code& ec) { return Number_(last, ec); }
    bool on_bool(bool truth, json::error_code& ec)
    {
        return Guarded_(ec, [&] { Put_(json::value(truth)); });
    }
    bool on_null(json::error_code& ec)
    {
        return Guarded_(ec, [&] { Put_(json::value(nullptr)); });
    }

private:
    enum class Part_t
    {
        Root,       // the object that a document is
        Sections,   // the array of its sections, or of those below one
        Section,    // the object of one
        Parameters, // arrays of what is built
        Schemas,
        Values,
    };

    /// An outer part that is open.
    struct Open_t
    {
        Part_t part;
        std::string key;       // of the member that comes next, in an object
        std::size_t index = 0; // of the element that comes next, in an array
        json::object members;  // what a section says of itself
        std::vector<std::string> keys;
    };

    bool Gather_(json::string_view part)
    {
        m_text.append(part.data(), part.size());
        return true;
    }

    bool Number_(json::string_view last, json::error_code& ec)
    {
        Gather_(last);
        return Guarded_(ec, [&] {
            std::string const text = std::exchange(m_text, {});
            auto number = ParseNumber(text);
            if (!number)
                throw Refusal(m_builder ? m_builder->Pointer() : Pointer_(),
                              "no number of 64 bits comes near to this one");
            Put_(std::move(*number));
        });
    }

    template<typename Step>
    bool Guarded_(json::error_code& ec, Step&& step)
    {
        try {
            step();
            return true;
        } catch (Refusal const& refusal) {
            m_refusal = refusal;
        }
        ec = json::error::exception;
        return false;
    }

    std::string Pointer_() const { return PointerTo_(m_open.size()); }

    std::string PointerTo_(std::size_t depth) const
    {
        std::string pointer;
        for (auto const& open : std::span(m_open).first(depth))
            AppendToPointer(pointer, IsArray_(open.part) ? std::to_string(open.index) : open.key);
        return pointer;
    }

    static bool IsArray_(Part_t part) { return part != Part_t::Root && part != Part_t::Section; }

    /// The outer part that the member of this key is; nothing for one that is built.
    static std::optional<Part_t> PartOf_(Open_t const& open)
    {
        if (open.key == "sections")
            return Part_t::Sections;
        if (open.key == "parameters" && open.part == Part_t::Section)
            return Part_t::Parameters;
        if (open.key == "schemas" && open.part == Part_t::Root)
            return Part_t::Schemas;
        if (open.key == "values" && open.part == Part_t::Root)
            return Part_t::Values;
        return std::nullopt;
    }

    /// The outer part that begins here; nothing where something is built.
    std::optional<Part_t> NextPart_() const
    {
        if (!m_sink || m_builder)
            return std::nullopt;
        if (m_open.empty())
            return Part_t::Root;
        if (m_open.back().part == Part_t::Sections)
            return Part_t::Section;
        return IsArray_(m_open.back().part) ? std::nullopt : PartOf_(m_open.back());
    }

    Builder& Building_()
    {
        if (!m_builder)
            m_builder.emplace(Pointer_());
        return *m_builder;
    }

    void Begin_(json::value container)
    {
        auto const part = NextPart_();
        if (!part)
            return Building_().Begin(std::move(container));
        if (container.is_array() != IsArray_(*part))
            throw Refusal(Pointer_(), container.is_array() ? "an object is expected" : "an array is expected");
        if (m_open.size() > k_maxOuterParts)
            throw Refusal(Pointer_(), "sections do not lie this deep");
        m_open.push_back({*part, {}, 0, {}, {}});
    }

    void End_()
    {
        if (m_builder) {
            m_builder->End();
            return Finish_();
        }
        // One that lacks a part of its own has not been handed on yet, and is refused for that.
        if (m_open.back().part == Part_t::Section && m_open.back().members.size() < k_sectionMembers)
            TakeSection_();
        m_open.pop_back();
        Advance_();
    }

    void TakeSection_()
    {
        std::string const pointer = PointerTo_(m_open.size() - 1);
        json::value const section(m_open.back().members);
        m_sink->TakeSection(Node(section, pointer));
    }

    void Key_(std::string key)
    {
        if (m_builder)
            return m_builder->Key(std::move(key));
        auto& open = m_open.back();
        if (std::find(open.keys.begin(), open.keys.end(), key) != open.keys.end())
            throw Refusal(Pointer_(), "'" + key + "' stands there twice");
        open.key = key;
        bool const isOwn = open.part == Part_t::Section ? key == "path" || key == "id" : key == "format";
        if (!isOwn && !PartOf_(open))
            throw Refusal(Pointer_(), "'" + key + "' is not known here");
        open.keys.push_back(std::move(key)); // a handful at most, since others are refused
    }

    void Put_(json::value value)
    {
        if (NextPart_())
            throw Refusal(Pointer_(), m_open.empty() || IsArray_(m_open.back().part) ? "an object is expected"
                                                                                     : "an array is expected");
        Building_().Put(std::move(value));
        Finish_();
    }

    /// Hands on what was built, if it is whole.
    void Finish_()
    {
        if (!m_builder->IsDone())
            return;
        auto const builder = std::exchange(m_builder, std::nullopt);
        Node const done = builder->Done();
        if (m_take)
            return (*m_take)(done);
        auto& open = m_open.back();
        switch (open.part) {
        case Part_t::Parameters:
            m_sink->TakeParameter(done);
            break;
        case Part_t::Schemas:
            m_sink->TakeSchema(done);
            break;
        case Part_t::Values:
            m_sink->TakeValue(done);
            break;
        case Part_t::Root:
            if (done.Unsigned() != k_jsonFormat)
                done.Refuse("this format is not known, only " + std::to_string(k_jsonFormat));
            break;
        default:
            open.members.emplace(open.key, done.Value());
            if (open.members.size() == k_sectionMembers)
                TakeSection_();
        }
        Advance_();
    }

    void Advance_()
    {
        if (!m_open.empty())
            ++m_open.back().index;
    }

    static constexpr std::size_t k_maxOuterParts = 16;
    static constexpr std::size_t k_sectionMembers = 2; // "path" and "id"

    std::function<void(Node const&)> const* m_take = nullptr; // either this
    DocumentSink* m_sink = nullptr;                           // or that
    std::vector<Open_t> m_open;
    std::optional<Builder> m_builder;
    std::string m_text;
    std::optional<Refusal> m_refusal;
};

/// Where in the text reading stands.
class Position
{
public:
    void Advance(char const* text, std::size_t size)
    {
        for (char const* const end = text + size; text != end; ++text) {
            ++m_offset;
            ++m_column;
            if (*text == '\n') {
                ++m_line;
                m_column = 1;
            }
        }
    }

    JsonFault_t Fault(std::string pointer, std::string reason) const
    {
        return {std::move(pointer), m_offset, m_line, m_column, std::move(reason)};
    }

private:
    std::size_t m_offset = 0;
    std::size_t m_line = 1;
    std::size_t m_column = 1;
};

template<typename Target>
JsonOutcome_t Read(std::istream& in, Target& target)
{
    json::parse_options options;
    options.max_depth = k_maxJsonDepth;
    json::basic_parser<Handler> parser(options, target);
    Position position;
    json::error_code ec;
    auto const chunk = std::make_unique<char[]>(k_chunkSize);
    bool isMore = true;
    while (!ec && isMore) {
        in.read(chunk.get(), k_chunkSize);
        auto const size = static_cast<std::size_t>(in.gcount());
        isMore = size > 0;
        if (in.bad())
            return position.Fault({}, "the text cannot be read");
        std::size_t const taken = parser.write_some(isMore, chunk.get(), size, ec);
        position.Advance(chunk.get(), taken);
        if (!ec && taken < size)
            ec = json::error::extra_data;
    }
    if (auto const& refusal = parser.handler().GetRefusal())
        return position.Fault(refusal->GetPointer(), refusal->what());
    if (ec)
        return position.Fault({}, ec.message());
    return std::nullopt;
}

} // namespace

JsonOutcome_t ReadWhole(std::istream& in, std::function<void(Node const&)> const& take) { return Read(in, take); }

JsonOutcome_t ReadParts(std::istream& in, DocumentSink& sink) { return Read(in, sink); }

} // namespace Legacy::IfKit::Detail
