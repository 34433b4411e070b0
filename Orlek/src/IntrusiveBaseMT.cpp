#include <Orlek/IntrusiveBaseMT.h>

namespace Orlek {

IntrusiveBaseMT::~IntrusiveBaseMT() = default;

} // namespace Orlek
