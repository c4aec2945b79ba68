// The DataRefTool stand-in: a plug-in of the host that keeps the names it is sent.
#include "host/dataref_tool.h"

#include "host/host_internal.h"

namespace xphost {

namespace {

struct DataRefToolState {
    int id = -1;
    std::vector<std::string> names;
};

DataRefToolState& tool() {
    static DataRefToolState state;
    return state;
}

void receive(int, int message, void* param) {
    if (message != kDataRefToolAddName || param == nullptr) return;
    tool().names.emplace_back(static_cast<const char*>(param));
}

HostModule module("dataref_tool", [] { tool() = DataRefToolState{}; });

ScenarioVerbRegistration verb("datareftool", "datareftool add | datareftool count",
                              [](ScenarioLine& line) -> std::string {
                                  if (line.args.size() == 2 && line.args[1] == "add") {
                                      addDataRefTool();
                                      return "";
                                  }
                                  if (line.args.size() == 2 && line.args[1] == "count") {
                                      *line.out << "datareftool names " << dataRefToolNames().size() << "\n";
                                      return "";
                                  }
                                  return "expected 'datareftool add' or 'datareftool count'";
                              });

}  // namespace

int addDataRefTool() {
    if (tool().id < 0)
        tool().id = addStandInPlugin("DataRefTool", "com.acmedev.datareftool", "DataRefTool stand-in", receive);
    return tool().id;
}

const std::vector<std::string>& dataRefToolNames() { return tool().names; }

}  // namespace xphost
