// A fault for a checker to report: an object is read after its last reference is gone.
#include <Legacy/If/Bool.h>

#include <boost/smart_ptr/intrusive_ptr.hpp>

int main()
{
    using namespace Legacy::If;
    boost::intrusive_ptr<BoolItem> item(new BoolItem(1));
    auto const* const gone = reinterpret_cast<unsigned char const volatile*>(item.get());
    item.reset();
    return gone[sizeof(void*)];
}
