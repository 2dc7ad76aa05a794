#pragma once

/// A call as written in a file of the backend. White space does not count.
struct NativeCall {
    const char* file;
    const char* text;
};
