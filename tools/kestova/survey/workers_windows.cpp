#include "tools/kestova/common/errors.h"
#include "tools/kestova/survey/workers.h"

void RequireWorkers() {
    throw WrongUse("survey runs on Linux only; `run` runs a script on one PC");
}

void RunInWorkers(size_t, const WorkerLimits&, const std::function<std::string(size_t)>&,
                  const std::function<void(size_t, const WorkerEnd&)>&) {
    RequireWorkers();
}
