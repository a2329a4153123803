#pragma once

namespace TesseraRun {

// The built-in demo session (apps/run/demoSession.tss, compiled in).
extern const char* const demoSession;

} // namespace TesseraRun
