#pragma once

/** Leaves a trace of a call in the log: the method's qualified name and the source line. */
void traceEntry(const char* method, int line);
