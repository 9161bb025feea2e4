#pragma once

/// The whole runtime of the generated codecs: bit access, byte access, checksum, assertion and
/// diagnostics. Needs nothing but the C++17 library.

#include "korcg_assert.h"
#include "korcg_bits.h"
#include "korcg_crc.h"
#include "korcg_dbg.h"
#include "korcg_load.h"
