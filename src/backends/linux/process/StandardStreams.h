#pragma once

namespace nocta {

/// Makes sure that printing can neither block nor end the process. From now on, whole lines that
/// standard output or standard error cannot take at once are dropped, and a closed pipe does not
/// end the process. Qt's messages go the same way. Child processes are not affected: the streams
/// themselves stay as they were inherited. It applies for the whole life of the process.
void makeOutputNonBlocking();

} // namespace nocta
