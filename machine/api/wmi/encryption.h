// The WMI class of BitLocker, in its own namespace, which not every PC has.
#pragma once

#include "machine/api/wmi/class.h"

namespace machine {

WmiClass EncryptionClass();

}  // namespace machine
