// The logger's helpers that the library, its tools and its tests share.
#ifndef ORVAN_LOG_ALOGGER_H
#define ORVAN_LOG_ALOGGER_H

#include <Orvan/ALogger.h>

#include <string>

namespace Orvan {

// One console and text-file line of a record:
// "[ HH:MM:SS.mmm ] :: [ <level> ] :: [ <module> ] ||>  (<userid>) <message>\n", local time.
// Throws the parser's or the number conversion's exception for a record it cannot read.
std::string simpleFormat(const std::string& record);

} // namespace Orvan

#endif
