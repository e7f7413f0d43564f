// Everything an application needs to work with node maps.
#ifndef GENAPI_GENAPI_H
#define GENAPI_GENAPI_H

#include <GenApi/AccessModeHelpers.h>
#include <GenApi/ChunkAdapter.h>
#include <GenApi/ChunkAdapterGEV.h>
#include <GenApi/ChunkAdapterGeneric.h>
#include <GenApi/ChunkAdapterU3V.h>
#include <GenApi/Container.h>
#include <GenApi/EnumClasses.h>
#include <GenApi/EnumerationTRef.h>
#include <GenApi/EventAdapter.h>
#include <GenApi/EventAdapterGEV.h>
#include <GenApi/EventAdapterGeneric.h>
#include <GenApi/EventAdapterU3V.h>
#include <GenApi/IBase.h>
#include <GenApi/IBoolean.h>
#include <GenApi/ICategory.h>
#include <GenApi/ICommand.h>
#include <GenApi/IDestroy.h>
#include <GenApi/IEnumEntry.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IEnumerationT.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>
#include <GenApi/INode.h>
#include <GenApi/INodeMap.h>
#include <GenApi/IPort.h>
#include <GenApi/IRegister.h>
#include <GenApi/ISelector.h>
#include <GenApi/IString.h>
#include <GenApi/IValue.h>
#include <GenApi/NodeCallback.h>
#include <GenApi/NodeMapFactory.h>
#include <GenApi/NodeMapRef.h>
#include <GenApi/Persistence.h>
#include <GenApi/Pointer.h>
#include <GenApi/Synch.h>
#include <GenApi/Types.h>

#endif
