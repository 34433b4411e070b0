#include "net/NetValueImpl.h"

#include <Legacy/If/Endpoint.h>

namespace Legacy::If {

template class Detail::NetInfo<EndpointFamily>;
template class Detail::NetItem<EndpointFamily>;

} // namespace Legacy::If
