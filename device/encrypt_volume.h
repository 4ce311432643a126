// The volumes that BitLocker has encrypted.
#pragma once

// Holds nothing.
class CEncryptVolume {};
