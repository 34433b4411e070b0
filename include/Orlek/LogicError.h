#pragma once

// The class stands beside its base; this header lets it be found under its own name.
#include <Orlek/Exception.h>
