// The GenICam base types: strings, string lists and exceptions.
#ifndef GENICAM_GCBASE_H
#define GENICAM_GCBASE_H

#include <Base/GCException.h>
#include <Base/GCString.h>
#include <Base/GCStringVector.h>

#endif
