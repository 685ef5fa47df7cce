// SPDX-License-Identifier: MIT
#include <fmod_errors.h>

const char* FMOD_ErrorString(FMOD_RESULT result) {
    switch (result) {
    case FMOD_OK:
        return "No errors.";
    case FMOD_ERR_CHANNEL_ALLOC:
        return "Error trying to allocate a channel.";
    case FMOD_ERR_CHANNEL_STOLEN:
        return "The specified channel has been reused to play another sound.";
    case FMOD_ERR_FILE_BAD:
        return "Error loading file.";
    case FMOD_ERR_FILE_NOTFOUND:
        return "File not found. ";
    case FMOD_ERR_FORMAT:
        return "Unsupported file or audio format.";
    case FMOD_ERR_INITIALIZATION:
        return "Cannot call this command after System::init.";
    case FMOD_ERR_INTERNAL:
        return "An error occurred that wasn't supposed to.  Contact support.";
    case FMOD_ERR_INVALID_HANDLE:
        return "An invalid object handle was used.";
    case FMOD_ERR_INVALID_PARAM:
        return "An invalid parameter was passed to this function.";
    case FMOD_ERR_MEMORY:
        return "Not enough memory or resources.";
    case FMOD_ERR_OUTPUT_INIT:
        return "Error initializing output device.";
    case FMOD_ERR_UNINITIALIZED:
        return "This command failed because System::init or System::setDriver was not called.";
    default:
        return "Unknown error.";
    }
}
