// The trace stack, as the reports see it.
#ifndef ZR_FRAME_TRACE_H
#define ZR_FRAME_TRACE_H

namespace zr::frame {

class LogRecord;

// Writes the open brackets from the innermost to the outermost, and the two line ends that close every record with
// a traceback. Nothing but these once tracing has ended or without an open bracket.
void WriteTraceback(LogRecord &record);

} // namespace zr::frame

#endif
