#pragma once

namespace dravo {

/// Whoever reads the output may go away, or may never have been there, and a file may reach the
/// size that the user is allowed: each must end as a failed write, not by a signal, and not with
/// output in a file that took the free descriptor. To be called before any file is opened.
void secure_standard_streams();

}  // namespace dravo
