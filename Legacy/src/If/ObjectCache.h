#pragma once

#include <cstddef>

namespace Legacy::If::Detail {

/// Storage for schemas and values: small blocks are kept by the thread that freed them, a bounded number of each size,
/// and handed out again without a trip to the allocator. Given back in full when the thread ends. Builds with an
/// address checker go straight to the allocator, so that it sees every object.
void* AllocateObject(std::size_t size);
void FreeObject(void* object, std::size_t size) noexcept;

} // namespace Legacy::If::Detail
