#include "net/NetValueImpl.h"

#include <Legacy/If/Addr.h>

namespace Legacy::If {

template class Detail::NetInfo<AddrFamily>;
template class Detail::NetItem<AddrFamily>;

} // namespace Legacy::If
