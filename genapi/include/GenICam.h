// Umbrella header of the GenICam interface: base types and the GenApi node-map interface.
#ifndef GENICAM_H
#define GENICAM_H

#include <Base/GCBase.h>
#include <GenApi/GenApi.h>

#endif
