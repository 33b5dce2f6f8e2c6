#pragma once
// The grid's sort of byte keys (private to the grid; tested on its own).
#include <cstdint>
#include <vector>

namespace kvr {

// Sorts the byte keys held one after another in `claves`: the key k is
// claves[inicios[k] .. inicios[k + 1]) and belongs to the row at position posiciones[k]. Keys
// compare byte by byte as unsigned, and must be prefix-free (no key is the beginning of another);
// equal keys go in the order of their positions. Returns the positions in key order. The three
// buffers are used as work space and are left in no particular order.
std::vector<uint32_t> OrdenarClavesRadix(std::vector<char> &claves, std::vector<uint32_t> &inicios,
                                         std::vector<uint32_t> &posiciones);

} // namespace kvr
