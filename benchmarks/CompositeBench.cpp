// What values made of values cost: one with a hundred members of several types in turn, one with a hundred numbers, and
// ones nested deep, whose cost per level must not grow with the depth.
#include "Records.h"

#include <Legacy/If/Bool.h>
#include <Legacy/If/Composite.h>
#include <Legacy/If/Numeric.h>
#include <Legacy/If/ResultElem.h>
#include <Legacy/If/String.h>

#include <Hundred.pb.h>
#include <Peers.pb.h>
#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include <memory>

namespace {

using namespace Legacy::If;
using namespace Bench;

using CompositePtr = boost::intrusive_ptr<CompositeItem>;

constexpr unsigned int k_members = 100;

CompositePtr MakeWide()
{
    CompositePtr const composite(new CompositeItem(k_id));
    for (unsigned int i = 0; i < k_members; ++i)
        composite->AddItem(NumericItem<U32Traits>::Create(k_id + i, i));
    return composite;
}

boost::intrusive_ptr<CompositeInfo> MakeWideSchema()
{
    boost::intrusive_ptr<CompositeInfo> const schema(new CompositeInfo(k_id, k_name, Permission_t{}));
    for (unsigned int i = 0; i < k_members; ++i)
        schema->AddInfo(new NumericInfo<U32Traits>(k_id + i, k_name, Permission_t{}));
    return schema;
}

Bench::Hundred MakeHundred()
{
    Bench::Hundred message;
    auto const& fields = *message.GetDescriptor();
    for (int i = 0; i < fields.field_count(); ++i)
        message.GetReflection()->SetUInt32(&message, fields.field(i), static_cast<std::uint32_t>(i));
    return message;
}

Bench::Members MakeMembers()
{
    Bench::Members message;
    for (unsigned int i = 0; i < k_members; ++i) {
        auto& member = *message.add_member();
        member.set_id(k_id + i);
        member.set_value(i);
    }
    return message;
}

/// A number, a signed one, a boolean, a wide number and a text in turn, as schemas of devices have them.
CompositePtr MakeMixed()
{
    CompositePtr const composite(new CompositeItem(k_id));
    for (unsigned int i = 0; i < k_members; i += 5) {
        composite->AddItem(NumericItem<U32Traits>::Create(k_id + i, i));
        composite->AddItem(NumericItem<S32Traits>::Create(k_id + i + 1, -static_cast<int>(i)));
        composite->AddItem(BoolItem::Create(k_id + i + 2, i % 2 == 0));
        composite->AddItem(NumericItem<U64Traits>::Create(k_id + i + 3, std::uint64_t{i} << 32));
        composite->AddItem(StringItem::Create(k_id + i + 4, "alias-" + std::to_string(i)));
    }
    return composite;
}

Bench::MixedMembers MakeMixedMembers()
{
    Bench::MixedMembers message;
    unsigned int id = k_id;
    auto const add = [&message, &id]() -> Bench::MixedMember& {
        auto& member = *message.add_member();
        member.set_id(id++);
        return member;
    };
    for (unsigned int i = 0; i < k_members; i += 5) {
        add().set_u32(i);
        add().set_s32(-static_cast<int>(i));
        add().set_truth(i % 2 == 0);
        add().set_u64(std::uint64_t{i} << 32);
        add().set_text("alias-" + std::to_string(i));
    }
    return message;
}

/// Duplicates a value again and again, and compares the last one.
void Copy(benchmark::State& state, ItemPtr const& item)
{
    ItemPtr copy;
    Measure(state, [&] { copy = item->DeepCopy(); });
    Check(state, copy->IsEqualValue(item));
}

void Print(benchmark::State& state, ItemPtr const& item)
{
    bool right = true;
    Measure(state, [&] { right &= item->GetValAsString().starts_with('('); });
    Check(state, right);
}

template<typename Message>
void PrintMessage(benchmark::State& state, Message const& message)
{
    bool right = true;
    Measure(state, [&] { right &= !message.ShortDebugString().empty(); });
    Check(state, right);
}

/// Copies onto the heap, again and again.
template<typename Message>
void CopyMessage(benchmark::State& state, Message const& message)
{
    std::unique_ptr<Message> copy;
    Measure(state, [&] { copy = std::make_unique<Message>(message); });
    Check(state, copy->SerializeAsString() == message.SerializeAsString());
}

/// The main rows: what a composite of a device looks like, beside a list of members that know their ids.
void AddMixed()
{
    std::string const subject = "mixed";
    AddRow("serialize", subject, k_ours, [](benchmark::State& state) { Serialize(state, MakeMixed()); });
    AddRow("serialize", subject, "protobuf",
           [](benchmark::State& state) { SerializeMessage(state, MakeMixedMembers()); });
    AddRow("rebuild", subject, k_ours, [](benchmark::State& state) { Rebuild(state, MakeMixed()); });
    AddRow("rebuild", subject, "protobuf", [](benchmark::State& state) { ParseMessage(state, MakeMixedMembers()); });
    AddRow("copy", subject, k_ours, [](benchmark::State& state) { Copy(state, MakeMixed()); });
    AddRow("copy", subject, "protobuf", [](benchmark::State& state) { CopyMessage(state, MakeMixedMembers()); });
    AddRow("to-text", subject, k_ours, [](benchmark::State& state) { Print(state, MakeMixed()); });
    AddRow("to-text", subject, "protobuf", [](benchmark::State& state) { PrintMessage(state, MakeMixedMembers()); });
}

/// Beside a list of members that know their ids, as ours do, and beside a message whose hundred fields the compiler
/// knows, which is the limit.
void AddWide()
{
    std::string const subject = "hundred";
    AddRow("serialize", subject, k_ours, [](benchmark::State& state) { Serialize(state, MakeWide()); });
    AddRow("serialize", subject, "protobuf", [](benchmark::State& state) { SerializeMessage(state, MakeMembers()); });
    AddRow("serialize", subject, "protobuf-fields",
           [](benchmark::State& state) { SerializeMessage(state, MakeHundred()); });
    AddRow("rebuild", subject, k_ours, [](benchmark::State& state) { Rebuild(state, MakeWide()); });
    AddRow("rebuild", subject, "protobuf", [](benchmark::State& state) { ParseMessage(state, MakeMembers()); });
    AddRow("rebuild", subject, "protobuf-fields", [](benchmark::State& state) { ParseMessage(state, MakeHundred()); });
    AddRow("copy", subject, k_ours, [](benchmark::State& state) { Copy(state, MakeWide()); });
    AddRow("copy", subject, "protobuf", [](benchmark::State& state) { CopyMessage(state, MakeMembers()); });
    AddRow("copy", subject, "protobuf-fields", [](benchmark::State& state) { CopyMessage(state, MakeHundred()); });
    AddRow("create-from-schema", subject, k_ours, [](benchmark::State& state) {
        auto const schema = MakeWideSchema();
        ItemPtr item;
        Measure(state, [&] { item = schema->CreateItem(); });
        Check(state, !item->Validate(schema));
    });
    AddRow("create-from-schema", subject, "protobuf-fields", [](benchmark::State& state) {
        auto const& prototype = Bench::Hundred::default_instance();
        std::unique_ptr<google::protobuf::Message> message;
        Measure(state, [&] { message.reset(prototype.New()); });
        Check(state, message->IsInitialized());
    });
    AddRow("equal", subject, k_ours, [](benchmark::State& state) {
        CompositePtr const composite = MakeWide();
        CompositePtr const other = MakeWide();
        bool right = true;
        Measure(state, [&] { right &= composite->IsEqualValue(other); });
        Check(state, right);
    });
    AddRow("validate-pass", subject, k_ours, [](benchmark::State& state) {
        CompositePtr const composite = MakeWide();
        auto const schema = MakeWideSchema();
        bool right = true;
        Measure(state, [&] { right &= !composite->Validate(schema); });
        Check(state, right);
    });
    AddRow("validate-fail", subject, k_ours, [](benchmark::State& state) {
        CompositePtr const composite = MakeWide();
        composite->AddItem(new NumericItem<U32Traits>(k_id));
        auto const schema = MakeWideSchema();
        bool right = true;
        Measure(state, [&] { right &= !!composite->Validate(schema); });
        Check(state, right);
    });
    AddRow("to-text", subject, k_ours, [](benchmark::State& state) { Print(state, MakeWide()); });
    AddRow("to-text", subject, "protobuf", [](benchmark::State& state) { PrintMessage(state, MakeMembers()); });
}

/// Each level holds a number and the next level.
CompositePtr MakeDeep(int depth)
{
    CompositePtr inner;
    for (int i = 0; i < depth; ++i) {
        CompositePtr const outer(new CompositeItem(k_id));
        outer->AddItem(NumericItem<U32Traits>::Create(k_id, 7));
        outer->AddItem(inner);
        inner = outer;
    }
    return inner;
}

Bench::Node MakeDeepMessage(int depth)
{
    Bench::Node root;
    Bench::Node* node = &root;
    for (int i = 0; i < depth; ++i) {
        node->set_value(7);
        if (i + 1 < depth)
            node = node->mutable_child();
    }
    return root;
}

/// Rebuilds with no limit on the depth, which protobuf has by default.
bool ParseDeep(std::string const& bytes, Bench::Node& node)
{
    google::protobuf::io::ArrayInputStream array(bytes.data(), static_cast<int>(bytes.size()));
    google::protobuf::io::CodedInputStream in(&array);
    in.SetRecursionLimit(1'000'000);
    return node.ParseFromCodedStream(&in);
}

/// Tells the time for one level as a counter of its own, `per-level`.
void ReportLevels(benchmark::State& state, int depth)
{
    state.counters["per-level"] =
        benchmark::Counter(depth, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void AddDeep(int depth)
{
    std::string const subject = "nested-" + std::to_string(depth);
    AddRow("serialize", subject, k_ours, [depth](benchmark::State& state) {
        Serialize(state, MakeDeep(depth));
        ReportLevels(state, depth);
    });
    AddRow("rebuild", subject, k_ours, [depth](benchmark::State& state) {
        Rebuild(state, MakeDeep(depth));
        ReportLevels(state, depth);
    });
    AddRow("copy", subject, k_ours, [depth](benchmark::State& state) {
        Copy(state, MakeDeep(depth));
        ReportLevels(state, depth);
    });
    AddRow("to-text", subject, k_ours, [depth](benchmark::State& state) {
        Print(state, MakeDeep(depth));
        ReportLevels(state, depth);
    });
    // Protobuf recurses: a hundred thousand levels end the stack.
    if (depth > 1000)
        return;
    AddRow("serialize", subject, "protobuf", [depth](benchmark::State& state) {
        SerializeMessage(state, MakeDeepMessage(depth));
        ReportLevels(state, depth);
    });
    AddRow("rebuild", subject, "protobuf", [depth](benchmark::State& state) {
        std::string const bytes = MakeDeepMessage(depth).SerializeAsString();
        bool right = true;
        Measure(state, [&] {
            Bench::Node node;
            right &= ParseDeep(bytes, node);
        });
        Check(state, right);
        ReportLevels(state, depth);
    });
    AddRow("copy", subject, "protobuf", [depth](benchmark::State& state) {
        CopyMessage(state, MakeDeepMessage(depth));
        ReportLevels(state, depth);
    });
    AddRow("to-text", subject, "protobuf", [depth](benchmark::State& state) {
        PrintMessage(state, MakeDeepMessage(depth));
        ReportLevels(state, depth);
    });
}

struct Rows
{
    Rows()
    {
        AddMixed();
        AddWide();
        for (int const depth : {10, 32, 1000, 100'000})
            AddDeep(depth);
    }
} const k_rows;

} // namespace
