// The WMI class of BitLocker, in a namespace of its own that not every PC has.
#pragma once

#include "machine/api/wmi/class.h"

namespace machine {

WmiClass EncryptionClass();

}  // namespace machine
