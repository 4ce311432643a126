#include "tools/kestova/json/taped_operations.h"

#include "base/utf.h"
#include "tools/kestova/json/json_values.h"

void TapedOperations::Begins(const Operation& operation, const Values& arguments) {
    tape_.Add({{"operation", operation.name}, {"arguments", ToJson(arguments)}});
}

void TapedOperations::Logs(const LogEntry& record) {
    tape_.Add({{"level", record.level}, {"text", ToUtf8(record.Text())}});
}

void TapedOperations::Ends(const Operation& operation, const Value& result, const Values& outputs) {
    tape_.Add({{"end", operation.name}, {"result", ToJson(result)}, {"outputs", ToJson(outputs)}});
}

Values ArgumentsOf(const Operation& operation, const Replay::Operation& recorded) {
    std::vector<std::string> words;
    for (const Parameter& parameter : operation.parameters) {
        const auto value = recorded.arguments.find(parameter.name);
        if (parameter.output || value == recorded.arguments.end()) continue;
        words.push_back(value->is_string() ? value->get<std::string>() : value->dump());
    }
    return ReadArguments(operation, words);
}

bool GoTo(Replay& replay, const PlannedCall& call) {
    return replay.GoTo(call.operation->name, ToJson(call.arguments));
}
