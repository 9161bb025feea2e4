#pragma once

#include "StreamBuilder.h"

/// `content` as one gzip member.
Bytes gzipped(const Bytes& content);

/// `content` as one zstd frame.
Bytes zstdFrame(const Bytes& content);
