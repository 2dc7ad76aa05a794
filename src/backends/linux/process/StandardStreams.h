#pragma once

namespace nocta {

/// Makes sure that printing can neither block nor end the process. From now on, whole lines that
/// standard output or standard error cannot take immediately are dropped, and a closed pipe does
/// not end the process. This also applies to Qt's messages. Child processes are not affected: the
/// streams themselves stay as they were inherited. The effect lasts until the process exits.
void makeOutputNonBlocking();

} // namespace nocta
