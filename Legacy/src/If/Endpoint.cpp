#include "NetValueImpl.h"

#include <Legacy/If/Endpoint.h>

namespace Legacy::If {

template class NetInfo<EndpointFamily>;
template class NetItem<EndpointFamily>;

} // namespace Legacy::If
