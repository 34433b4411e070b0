// A plugin that uses all that the library brings along: messages, the log, and what a thread has of its own.
#include <Legacy/If.h>
#include <Legacy/If/MessageConversions.h>
#include <Orlek/LogManager.h>
#include <Pb/Legacy/If/AppEndpoint.pb.h>

namespace {

using namespace Legacy::If;

boost::intrusive_ptr<ItemBase> Made() { return boost::intrusive_ptr<ItemBase>(new BoolItem(1)); }

boost::intrusive_ptr<ItemBase> s_kept; // released when the plugin goes

} // namespace

extern "C" {

/// Whether all went as it should.
[[gnu::visibility("default")]] bool Use()
{
    s_kept = Made();
    boost::intrusive_ptr<StringInfo> const other(new StringInfo(1, "alias", Permission_t{}));
    Result result(1);
    result.AddResultElem(s_kept->Validate(other));
    result.LogResults(Orlek::LogManager::Instance().GetLogger("Plugin", nullptr, ""), "a finding");

    Pb::Legacy::If::AppProtocolInfo message;
    Sys2LegacyPb::Convert(AppProtocolInfo_t(), message);
    return result.GetNumResults() == 1 && !message.SerializeAsString().empty();
}

/// Leaves a value to the thread, which releases it at its end.
[[gnu::visibility("default")]] void UseInThread() { static thread_local auto const kept = Made(); }

} // extern "C"
