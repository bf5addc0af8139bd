#ifndef ORVC_ORVCTYPES_H
#define ORVC_ORVCTYPES_H

#include <stdint.h>

/* Error code of every camera API call: 0 means success, negative values name the fault. */
typedef int32_t OrvErrorType;

enum OrvErrorCodes
{
    OrvErrorSuccess = 0,
    OrvErrorInternalFault = -1,  /* unexpected fault inside the camera API */
    OrvErrorBadParameter = -2,   /* a null pointer or a malformed argument */
    OrvErrorNotFound = -3,       /* no such feature, device or entry list */
    OrvErrorWrongType = -4,      /* the call does not fit the feature's data type */
    OrvErrorInvalidCall = -5,    /* observer not registered, or already registered */
    OrvErrorInvalidAccess = -6,  /* read-only, or not readable/writable right now */
    OrvErrorInvalidValue = -7,   /* value out of range or an entry that does not exist or is not available */
    OrvErrorTimeout = -8,        /* the device did not answer in time */
    OrvErrorDeviceLost = -9,     /* the device is gone (unplugged, server stopped) */
    OrvErrorNotImplemented = -10 /* the backend cannot do this */
};

/* Data type of a feature as reported by Feature::GetDataType. */
typedef enum OrvFeatureDataType
{
    OrvFeatureDataUnknown = 0,
    OrvFeatureDataInt = 1,
    OrvFeatureDataFloat = 2,
    OrvFeatureDataEnum = 3,
    OrvFeatureDataString = 4,
    OrvFeatureDataBool = 5,
    OrvFeatureDataCommand = 6,
    OrvFeatureDataRaw = 7
} OrvFeatureDataType;

#endif
