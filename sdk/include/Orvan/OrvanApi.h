// The whole public interface of the Orvan SDK.
#ifndef ORVAN_ORVANAPI_H
#define ORVAN_ORVANAPI_H

#include <GenICam.h>
#include <Orvan/System.h>

#endif
