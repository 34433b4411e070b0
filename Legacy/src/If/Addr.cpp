#include "NetValueImpl.h"

#include <Legacy/If/Addr.h>

namespace Legacy::If {

template class NetInfo<AddrFamily>;
template class NetItem<AddrFamily>;

} // namespace Legacy::If
