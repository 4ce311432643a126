// The state of the recovery partition of an MBR disk.
#pragma once

// Results of CheckMBRRcvprtStatus: one value, never a combination.
enum : int {
    RCVPRT_READY = 0,       // hidden before, or hidden by this check
    NO_RCVPRT = 4,          // visible, without recovery files
    GETTYPE_FAILED = 16,    // the MBR ID could not be read
    GETLETTER_FAILED = 32,  // visible, without a drive letter
    CHANGEID_FAILED = 64,   // visible, and could not be hidden
    UNEXPECT_ID = 128,      // any other MBR ID
};
