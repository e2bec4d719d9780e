// Every record on disk is little-endian and is used in place through packed structs, so the
// host must be little-endian too.
#pragma once

#include <bit>

static_assert(std::endian::native == std::endian::little,
              "record layouts are read in place and need a little-endian host");
