// WMI as data: classes with their instances and methods, each in a namespace. Contains the classes that the
// library uses; one row adds another.
#pragma once

#include <functional>
#include <list>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "machine/journal/emulated_pc.h"

namespace machine {

// Absent (VT_NULL), text (VT_BSTR), a number (VT_I4) or a Boolean (VT_BOOL).
using WmiValue = std::variant<std::monostate, std::string, int32_t, bool>;

// Converts an optional fact.
WmiValue TextOrAbsent(const std::optional<std::string>& text);

// Values by name, in the order of their declaration. Names are compared without regard to case.
using WmiProperties = std::vector<std::pair<std::string, WmiValue>>;

// The value of that name, or null.
const WmiValue* FindProperty(const WmiProperties& properties, std::string_view name);

struct WmiMethod {
    std::string name;
    std::vector<std::string> inputs;   // empty: the method has no input signature
    std::vector<std::string> outputs;  // "ReturnValue" among them
    // Runs the method on an instance and fills the outputs, which are absent at first. A failure code
    // becomes the result of ExecMethod, without outputs.
    std::function<HRESULT(EmulatedPc&, const WmiProperties& instance, const WmiProperties& inputs,
                          WmiProperties& outputs)>
        run;
};

struct WmiClass {
    std::string space;  // "root\\cimv2", in any case
    std::string name;
    std::vector<std::string> properties;  // the first is the key used in object paths
    // Rows of values in the order of `properties`.
    std::function<std::vector<std::vector<WmiValue>>(const Pc&)> rows;
    std::vector<WmiMethod> methods;
    bool (*isOffered)(const Pc&) = nullptr;  // whether the PC has the class; null: always
};

class WmiRepository {
  public:
    // root\cimv2 with the classes about disks, and BitLocker's namespace.
    WmiRepository();
    static WmiRepository& Of(EmulatedPc& pc) { return pc.State<WmiRepository>(); }

    void Add(WmiClass definition) { classes_.push_back(std::move(definition)); }
    // Whether the PC has the namespace, that is, any class in it.
    bool HasNamespace(const Pc& pc, std::string_view space) const;
    // The class of that name; null if there is none, and if the PC lacks it. The pointer stays valid.
    const WmiClass* FindClass(const Pc& pc, std::string_view space, std::string_view name) const;

  private:
    std::list<WmiClass> classes_;
};

// The instances, each with all properties of the class.
std::vector<WmiProperties> InstancesOf(const Pc& pc, const WmiClass& definition);

}  // namespace machine
