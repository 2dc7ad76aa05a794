#pragma once

namespace nocta {

/// Lets nobody hold or end the process by what it prints: from now on, what standard output and
/// standard error do not take at once is dropped, by whole lines, and a reader that has gone is no
/// reason to end. The toolkit's messages go the same way. What the process starts is not affected:
/// the streams themselves stay as they were inherited. For the whole life of the process.
void makeOutputNonBlocking();

} // namespace nocta
