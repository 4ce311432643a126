// Whether the recovery partition of an MBR disk is as it should be.
#pragma once

// Results of CheckMBRRcvprtStatus: one value, never a combination.
enum : int {
    RCVPRT_READY = 0,       // hidden already, or hidden now
    NO_RCVPRT = 4,          // visible, without recovery media on it
    GETTYPE_FAILED = 16,    // the MBR ID could not be read
    GETLETTER_FAILED = 32,  // visible, without a drive letter
    CHANGEID_FAILED = 64,   // visible, and could not be hidden
    UNEXPECT_ID = 128,      // any other MBR ID
};
