#pragma once

#include <cstdint>

/// The structures of the Arrow C data interface and C stream interface, as the public documents of
/// Apache Arrow lay them out. Any Arrow reader takes tables through them without a copy and without
/// a shared library. Programs that include another header with the same structures get them once:
/// all such headers use these guards.
///
/// Each structure is released by its `release` member, from any thread, exactly once; null there
/// means that it has been released. Moving one is copying its bytes and setting `release` of the
/// source to null.

#ifndef ARROW_C_DATA_INTERFACE
#define ARROW_C_DATA_INTERFACE

#define ARROW_FLAG_DICTIONARY_ORDERED 1
#define ARROW_FLAG_NULLABLE 2
#define ARROW_FLAG_MAP_KEYS_SORTED 4

extern "C" {

/// The type of an array.
struct ArrowSchema {
    const char* format;   ///< "l" is int64, "+s" a structure, and so on
    const char* name;     ///< UTF-8
    const char* metadata; ///< number of pairs, then length and bytes of each key and value
    int64_t flags;        ///< of ARROW_FLAG_
    int64_t n_children;
    struct ArrowSchema** children;
    struct ArrowSchema* dictionary; ///< null when values are not encoded by a dictionary

    void (*release)(struct ArrowSchema*);
    void* private_data;
};

/// The values of an array.
struct ArrowArray {
    int64_t length;
    int64_t null_count; ///< -1: not counted
    int64_t offset;
    int64_t n_buffers;
    int64_t n_children;
    const void** buffers; ///< the first one says which values are not null, unless it is null
    struct ArrowArray** children;
    struct ArrowArray* dictionary;

    void (*release)(struct ArrowArray*);
    void* private_data;
};

} // extern "C"

#endif

#ifndef ARROW_C_STREAM_INTERFACE
#define ARROW_C_STREAM_INTERFACE

extern "C" {

/// Arrays of one type, one after the other. To be used by one thread at a time.
struct ArrowArrayStream {
    /// Writes the type of the arrays to `out`. 0, or an errno value.
    int (*get_schema)(struct ArrowArrayStream*, struct ArrowSchema* out);

    /// Writes the next array to `out`; at the end one that is released. 0, or an errno value.
    int (*get_next)(struct ArrowArrayStream*, struct ArrowArray* out);

    /// The message of the last call that failed, or null. Valid until the next call.
    const char* (*get_last_error)(struct ArrowArrayStream*);

    void (*release)(struct ArrowArrayStream*);
    void* private_data;
};

} // extern "C"

#endif
