// A stand-in for the header that an extension module's source includes once; the real one has the framework
// see the module's load.
#pragma once
