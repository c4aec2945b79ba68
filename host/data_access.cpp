// Datarefs: the simulator's own table, plug-in accessors, shared data, and the
// XPLMDataAccess entry points with X-Plane's rules for types, arrays and clipping.
#include <algorithm>
#include <cstring>
#include <map>
#include <memory>

#include "XPLMDataAccess.h"
#include "host/core_parts.h"

namespace xphost {

namespace {

enum class Source { None, Sim, Accessor, Shared };

struct Accessor {
    XPLMGetDatai_f readInt = nullptr;
    XPLMSetDatai_f writeInt = nullptr;
    XPLMGetDataf_f readFloat = nullptr;
    XPLMSetDataf_f writeFloat = nullptr;
    XPLMGetDatad_f readDouble = nullptr;
    XPLMSetDatad_f writeDouble = nullptr;
    XPLMGetDatavi_f readIntArray = nullptr;
    XPLMSetDatavi_f writeIntArray = nullptr;
    XPLMGetDatavf_f readFloatArray = nullptr;
    XPLMSetDatavf_f writeFloatArray = nullptr;
    XPLMGetDatab_f readData = nullptr;
    XPLMSetDatab_f writeData = nullptr;
    void* readRefcon = nullptr;
    void* writeRefcon = nullptr;
};

struct Sharer {
    int plugin;
    XPLMDataChanged_f notify;
    void* refcon;
};

// Entries are never freed: a handle found before a reset stays a valid pointer,
// it only stops answering.
struct DataEntry {
    Source source = Source::None;
    int owner = 0;
    SimDataRef sim;  // values of simulator and shared datarefs
    Accessor acc;
    int accTypes = 0;
    bool accWritable = false;
    std::vector<Sharer> sharers;
};

struct DataTable {
    std::map<std::string, std::unique_ptr<DataEntry>> byName;
    std::vector<DataEntry*> order;  // defined entries in order of definition
    bool logUnknown = false;
    std::vector<std::string> unknown;
};

DataTable& table() {
    static DataTable t;
    return t;
}

DataEntry* entryFor(const std::string& name) {
    auto& slot = table().byName[name];
    if (!slot) {
        slot = std::make_unique<DataEntry>();
        slot->sim.name = name;
    }
    return slot.get();
}

void addToOrder(DataEntry* e) {
    auto& o = table().order;
    if (std::find(o.begin(), o.end(), e) == o.end()) o.push_back(e);
}

DataEntry* live(XPLMDataRef ref) {
    auto* e = static_cast<DataEntry*>(ref);
    if (!e || e->source == Source::None) return nullptr;
    return e;
}

int typesOf(const DataEntry* e) {
    return e->source == Source::Accessor ? e->accTypes : e->sim.types;
}

bool accessorUsable(const DataEntry* e) {
    return e->source == Source::Accessor && pluginActive(e->owner);
}

void notifySharers(DataEntry* e) {
    if (e->source != Source::Shared) return;
    auto sharers = e->sharers;  // a notification may unshare
    for (auto& s : sharers) {
        if (!s.notify || !pluginActive(s.plugin)) continue;
        PluginScope scope(s.plugin);
        s.notify(s.refcon);
    }
}

// A write by a plug-in to simulator-held storage.
bool simWritable(DataEntry* e, const char* function) {
    if (e->source == Source::Shared) return true;
    if (e->source == Source::Sim && e->sim.writable) return true;
    debugLog(std::string(function) + " on read-only " + e->sim.name + " ignored");
    return false;
}

void afterSimWrite(DataEntry* e) {
    if (e->sim.onWrite) e->sim.onWrite(e->sim);
    notifySharers(e);
}

// Copies an element range out of a vector with X-Plane's clipping: a null buffer asks
// for the size; offset and count are clipped to the array.
template <typename T>
int readArray(const std::vector<T>& v, T* out, int offset, int max) {
    int size = static_cast<int>(v.size());
    if (!out) return size;
    if (offset < 0 || max <= 0 || offset >= size) return 0;
    int n = std::min(max, size - offset);
    std::copy(v.begin() + offset, v.begin() + offset + n, out);
    return n;
}

template <typename T>
void writeArray(std::vector<T>& v, const T* in, int offset, int count) {
    int size = static_cast<int>(v.size());
    if (!in || offset < 0 || count <= 0 || offset >= size) return;
    int n = std::min(count, size - offset);
    std::copy(in, in + n, v.begin() + offset);
}

SimDataRef* defineSim(const char* name, int types, bool writable) {
    DataEntry* e = entryFor(name);
    e->source = Source::Sim;
    e->owner = 0;
    e->sim = SimDataRef();
    e->sim.name = name;
    e->sim.types = types;
    e->sim.writable = writable;
    addToOrder(e);
    return &e->sim;
}

}  // namespace

// ---------------------------------------------------------------- module side

void resetDataRefs() {
    DataTable& t = table();
    for (auto& [name, e] : t.byName) {
        e->source = Source::None;
        e->sharers.clear();
        e->acc = Accessor();
        e->sim.onWrite = nullptr;
    }
    t.order.clear();
    t.unknown.clear();
    t.logUnknown = false;
}

SimDataRef* defineInt(const char* name, int value, bool writable) {
    SimDataRef* r = defineSim(name, kindInt, writable);
    r->set(value);
    return r;
}
SimDataRef* defineFloat(const char* name, float value, bool writable) {
    SimDataRef* r = defineSim(name, kindFloat, writable);
    r->set(value);
    return r;
}
SimDataRef* defineDouble(const char* name, double value, bool writable) {
    SimDataRef* r = defineSim(name, kindDouble, writable);
    r->set(value);
    return r;
}
SimDataRef* defineIntArray(const char* name, int size, bool writable) {
    SimDataRef* r = defineSim(name, kindIntArray, writable);
    r->ints.assign(size, 0);
    return r;
}
SimDataRef* defineFloatArray(const char* name, int size, bool writable) {
    SimDataRef* r = defineSim(name, kindFloatArray, writable);
    r->floats.assign(size, 0.0f);
    return r;
}
SimDataRef* defineBytes(const char* name, int size, bool writable) {
    SimDataRef* r = defineSim(name, kindData, writable);
    r->bytes.assign(size, 0);
    return r;
}

SimDataRef* simDataRef(const char* name) {
    auto& m = table().byName;
    auto it = m.find(name);
    if (it == m.end() || it->second->source != Source::Sim) return nullptr;
    return &it->second->sim;
}

void listDataRefLeaks(int plugin, std::vector<std::string>& out) {
    for (DataEntry* e : table().order) {
        if (e->source == Source::Accessor && e->owner == plugin)
            out.push_back("data accessor " + e->sim.name);
        for (auto& s : e->sharers)
            if (s.plugin == plugin) out.push_back("shared data " + e->sim.name);
    }
}

void dropDataRefsOf(int plugin) {
    for (DataEntry* e : table().order) {
        if (e->source == Source::Accessor && e->owner == plugin) {
            e->source = Source::None;
            e->acc = Accessor();
        }
        auto& s = e->sharers;
        s.erase(std::remove_if(s.begin(), s.end(), [&](const Sharer& x) { return x.plugin == plugin; }), s.end());
    }
    auto& o = table().order;
    o.erase(std::remove_if(o.begin(), o.end(), [](DataEntry* e) { return e->source == Source::None; }), o.end());
}

void setLogUnknownDataRefs(bool on) {
    ensureInitialized();
    table().logUnknown = on;
}
const std::vector<std::string>& unknownDataRefLookups() {
    return table().unknown;
}

bool dataRefExists(const std::string& name) {
    ensureInitialized();
    auto& m = table().byName;
    auto it = m.find(name);
    return it != m.end() && it->second->source != Source::None;
}

}  // namespace xphost

using namespace xphost;

// ---------------------------------------------------------------- lookup

XPLMDataRef XPLMFindDataRef(const char* inDataRefName) {
    if (!checkThread("XPLMFindDataRef") || !inDataRefName) return nullptr;
    auto& m = table().byName;
    auto it = m.find(inDataRefName);
    if (it == m.end() || it->second->source == Source::None) {
        table().unknown.push_back(inDataRefName);
        if (table().logUnknown) writeLog(std::string("xplm_host: unknown dataref ") + inDataRefName + "\n");
        else debugLog(std::string("unknown dataref ") + inDataRefName);
        return nullptr;
    }
    return it->second.get();
}

int XPLMCanWriteDataRef(XPLMDataRef inDataRef) {
    if (!checkThread("XPLMCanWriteDataRef")) return 0;
    DataEntry* e = live(inDataRef);
    if (!e) return 0;
    if (e->source == Source::Accessor) return e->accWritable ? 1 : 0;
    return e->source == Source::Shared || e->sim.writable ? 1 : 0;
}

int XPLMIsDataRefGood(XPLMDataRef inDataRef) {
    if (!checkThread("XPLMIsDataRefGood")) return 0;
    return live(inDataRef) ? 1 : 0;
}

XPLMDataTypeID XPLMGetDataRefTypes(XPLMDataRef inDataRef) {
    if (!checkThread("XPLMGetDataRefTypes")) return 0;
    DataEntry* e = live(inDataRef);
    return e ? typesOf(e) : xplmType_Unknown;
}

int XPLMCountDataRefs(void) {
    if (!checkThread("XPLMCountDataRefs")) return 0;
    return static_cast<int>(table().order.size());
}

void XPLMGetDataRefsByIndex(int offset, int count, XPLMDataRef* outDataRefs) {
    if (!checkThread("XPLMGetDataRefsByIndex") || !outDataRefs) return;
    auto& o = table().order;
    for (int k = 0; k < count; ++k) {
        int i = offset + k;
        outDataRefs[k] = (i >= 0 && i < static_cast<int>(o.size())) ? o[i] : nullptr;
    }
}

void XPLMGetDataRefInfo(XPLMDataRef inDataRef, XPLMDataRefInfo_t* outInfo) {
    if (!checkThread("XPLMGetDataRefInfo") || !outInfo) return;
    DataEntry* e = live(inDataRef);
    if (!e) return;
    outInfo->name = e->sim.name.c_str();
    outInfo->type = typesOf(e);
    outInfo->writable = XPLMCanWriteDataRef(inDataRef);
    outInfo->owner = e->source == Source::Accessor ? e->owner : 0;
}

// ---------------------------------------------------------------- scalars

int XPLMGetDatai(XPLMDataRef inDataRef) {
    if (!checkThread("XPLMGetDatai")) return 0;
    DataEntry* e = live(inDataRef);
    if (!e) return 0;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.readInt) return 0;
        PluginScope scope(e->owner);
        return e->acc.readInt(e->acc.readRefcon);
    }
    return (e->sim.types & kindInt) ? e->sim.i : 0;
}

void XPLMSetDatai(XPLMDataRef inDataRef, int inValue) {
    if (!checkThread("XPLMSetDatai")) return;
    DataEntry* e = live(inDataRef);
    if (!e) return;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.writeInt) return;
        PluginScope scope(e->owner);
        e->acc.writeInt(e->acc.writeRefcon, inValue);
        return;
    }
    if (!(e->sim.types & kindInt) || !simWritable(e, "XPLMSetDatai")) return;
    e->sim.set(inValue);
    afterSimWrite(e);
}

// The simulator's float and double datarefs answer either call, as X-Plane's own do.
float XPLMGetDataf(XPLMDataRef inDataRef) {
    if (!checkThread("XPLMGetDataf")) return 0;
    DataEntry* e = live(inDataRef);
    if (!e) return 0;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.readFloat) return 0;
        PluginScope scope(e->owner);
        return e->acc.readFloat(e->acc.readRefcon);
    }
    return (e->sim.types & (kindFloat | kindDouble)) ? e->sim.f : 0.0f;
}

void XPLMSetDataf(XPLMDataRef inDataRef, float inValue) {
    if (!checkThread("XPLMSetDataf")) return;
    DataEntry* e = live(inDataRef);
    if (!e) return;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.writeFloat) return;
        PluginScope scope(e->owner);
        e->acc.writeFloat(e->acc.writeRefcon, inValue);
        return;
    }
    if (!(e->sim.types & (kindFloat | kindDouble)) || !simWritable(e, "XPLMSetDataf")) return;
    e->sim.set(inValue);
    afterSimWrite(e);
}

double XPLMGetDatad(XPLMDataRef inDataRef) {
    if (!checkThread("XPLMGetDatad")) return 0;
    DataEntry* e = live(inDataRef);
    if (!e) return 0;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.readDouble) return 0;
        PluginScope scope(e->owner);
        return e->acc.readDouble(e->acc.readRefcon);
    }
    return (e->sim.types & (kindFloat | kindDouble)) ? e->sim.d : 0.0;
}

void XPLMSetDatad(XPLMDataRef inDataRef, double inValue) {
    if (!checkThread("XPLMSetDatad")) return;
    DataEntry* e = live(inDataRef);
    if (!e) return;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.writeDouble) return;
        PluginScope scope(e->owner);
        e->acc.writeDouble(e->acc.writeRefcon, inValue);
        return;
    }
    if (!(e->sim.types & (kindFloat | kindDouble)) || !simWritable(e, "XPLMSetDatad")) return;
    e->sim.set(inValue);
    afterSimWrite(e);
}

// ---------------------------------------------------------------- arrays

int XPLMGetDatavi(XPLMDataRef inDataRef, int* outValues, int inOffset, int inMax) {
    if (!checkThread("XPLMGetDatavi")) return 0;
    DataEntry* e = live(inDataRef);
    if (!e) return 0;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.readIntArray) return 0;
        PluginScope scope(e->owner);
        return e->acc.readIntArray(e->acc.readRefcon, outValues, inOffset, inMax);
    }
    return (e->sim.types & kindIntArray) ? readArray(e->sim.ints, outValues, inOffset, inMax) : 0;
}

void XPLMSetDatavi(XPLMDataRef inDataRef, int* inValues, int inoffset, int inCount) {
    if (!checkThread("XPLMSetDatavi")) return;
    DataEntry* e = live(inDataRef);
    if (!e) return;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.writeIntArray) return;
        PluginScope scope(e->owner);
        e->acc.writeIntArray(e->acc.writeRefcon, inValues, inoffset, inCount);
        return;
    }
    if (!(e->sim.types & kindIntArray) || !simWritable(e, "XPLMSetDatavi")) return;
    writeArray(e->sim.ints, static_cast<const int*>(inValues), inoffset, inCount);
    afterSimWrite(e);
}

int XPLMGetDatavf(XPLMDataRef inDataRef, float* outValues, int inOffset, int inMax) {
    if (!checkThread("XPLMGetDatavf")) return 0;
    DataEntry* e = live(inDataRef);
    if (!e) return 0;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.readFloatArray) return 0;
        PluginScope scope(e->owner);
        return e->acc.readFloatArray(e->acc.readRefcon, outValues, inOffset, inMax);
    }
    return (e->sim.types & kindFloatArray) ? readArray(e->sim.floats, outValues, inOffset, inMax) : 0;
}

void XPLMSetDatavf(XPLMDataRef inDataRef, float* inValues, int inoffset, int inCount) {
    if (!checkThread("XPLMSetDatavf")) return;
    DataEntry* e = live(inDataRef);
    if (!e) return;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.writeFloatArray) return;
        PluginScope scope(e->owner);
        e->acc.writeFloatArray(e->acc.writeRefcon, inValues, inoffset, inCount);
        return;
    }
    if (!(e->sim.types & kindFloatArray) || !simWritable(e, "XPLMSetDatavf")) return;
    writeArray(e->sim.floats, static_cast<const float*>(inValues), inoffset, inCount);
    afterSimWrite(e);
}

int XPLMGetDatab(XPLMDataRef inDataRef, void* outValue, int inOffset, int inMaxBytes) {
    if (!checkThread("XPLMGetDatab")) return 0;
    DataEntry* e = live(inDataRef);
    if (!e) return 0;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.readData) return 0;
        PluginScope scope(e->owner);
        return e->acc.readData(e->acc.readRefcon, outValue, inOffset, inMaxBytes);
    }
    if (!(e->sim.types & kindData)) return 0;
    return readArray(e->sim.bytes, static_cast<uint8_t*>(outValue), inOffset, inMaxBytes);
}

void XPLMSetDatab(XPLMDataRef inDataRef, void* inValue, int inOffset, int inLength) {
    if (!checkThread("XPLMSetDatab")) return;
    DataEntry* e = live(inDataRef);
    if (!e) return;
    if (e->source == Source::Accessor) {
        if (!accessorUsable(e) || !e->acc.writeData) return;
        PluginScope scope(e->owner);
        e->acc.writeData(e->acc.writeRefcon, inValue, inOffset, inLength);
        return;
    }
    if (!(e->sim.types & kindData) || !simWritable(e, "XPLMSetDatab")) return;
    writeArray(e->sim.bytes, static_cast<const uint8_t*>(inValue), inOffset, inLength);
    afterSimWrite(e);
}

// ---------------------------------------------------------------- publishing

XPLMDataRef XPLMRegisterDataAccessor(const char* inDataName, XPLMDataTypeID inDataType, int inIsWritable,
                                     XPLMGetDatai_f inReadInt, XPLMSetDatai_f inWriteInt,
                                     XPLMGetDataf_f inReadFloat, XPLMSetDataf_f inWriteFloat,
                                     XPLMGetDatad_f inReadDouble, XPLMSetDatad_f inWriteDouble,
                                     XPLMGetDatavi_f inReadIntArray, XPLMSetDatavi_f inWriteIntArray,
                                     XPLMGetDatavf_f inReadFloatArray, XPLMSetDatavf_f inWriteFloatArray,
                                     XPLMGetDatab_f inReadData, XPLMSetDatab_f inWriteData,
                                     void* inReadRefcon, void* inWriteRefcon) {
    if (!checkThread("XPLMRegisterDataAccessor") || !inDataName) return nullptr;
    DataEntry* e = entryFor(inDataName);
    if (e->source != Source::None) {
        writeLog(std::string("xplm_host: ") + pluginName(callingPlugin()) + " registers " + inDataName +
                 ", which already exists\n");
        return nullptr;
    }
    e->source = Source::Accessor;
    e->owner = callingPlugin();
    e->accTypes = inDataType;
    e->accWritable = inIsWritable != 0;
    e->acc = Accessor{inReadInt,      inWriteInt,      inReadFloat,      inWriteFloat,
                      inReadDouble,   inWriteDouble,   inReadIntArray,   inWriteIntArray,
                      inReadFloatArray, inWriteFloatArray, inReadData,   inWriteData,
                      inReadRefcon,   inWriteRefcon};
    addToOrder(e);
    return e;
}

void XPLMUnregisterDataAccessor(XPLMDataRef inDataRef) {
    if (!checkThread("XPLMUnregisterDataAccessor")) return;
    DataEntry* e = live(inDataRef);
    if (!e || e->source != Source::Accessor) return;
    e->source = Source::None;
    e->acc = Accessor();
    auto& o = table().order;
    o.erase(std::remove(o.begin(), o.end(), e), o.end());
}

int XPLMShareData(const char* inDataName, XPLMDataTypeID inDataType, XPLMDataChanged_f inNotificationFunc,
                  void* inNotificationRefcon) {
    if (!checkThread("XPLMShareData") || !inDataName) return 0;
    DataEntry* e = entryFor(inDataName);
    if (e->source == Source::None) {
        e->source = Source::Shared;
        e->owner = 0;
        e->sim = SimDataRef();
        e->sim.name = inDataName;
        e->sim.types = inDataType;
        e->sim.writable = true;
        // Shared arrays have no size of their own in X-Plane; give them room.
        if (inDataType & kindIntArray) e->sim.ints.assign(64, 0);
        if (inDataType & kindFloatArray) e->sim.floats.assign(64, 0.0f);
        if (inDataType & kindData) e->sim.bytes.assign(256, 0);
        addToOrder(e);
    } else if (e->source != Source::Shared || e->sim.types != inDataType) {
        return 0;
    }
    e->sharers.push_back({callingPlugin(), inNotificationFunc, inNotificationRefcon});
    return 1;
}

int XPLMUnshareData(const char* inDataName, XPLMDataTypeID inDataType, XPLMDataChanged_f inNotificationFunc,
                    void* inNotificationRefcon) {
    if (!checkThread("XPLMUnshareData") || !inDataName) return 0;
    auto& m = table().byName;
    auto it = m.find(inDataName);
    if (it == m.end() || it->second->source != Source::Shared) return 0;
    auto& s = it->second->sharers;
    int plugin = callingPlugin();
    for (auto i = s.begin(); i != s.end(); ++i) {
        if (i->plugin == plugin && i->notify == inNotificationFunc && i->refcon == inNotificationRefcon) {
            s.erase(i);
            return 1;
        }
    }
    return 0;
}

// ---------------------------------------------------------------- control API

namespace xphost {

double getValue(const std::string& name, int index, bool* ok) {
    ensureInitialized();
    if (ok) *ok = false;
    auto& m = table().byName;
    auto it = m.find(name);
    if (it == m.end() || it->second->source == Source::None) return 0;
    DataEntry* e = it->second.get();
    int types = typesOf(e);
    int i = index < 0 ? 0 : index;
    if (types & kindDouble) {
        if (ok) *ok = i == 0;
        return XPLMGetDatad(e);
    }
    if (types & kindFloat) {
        if (ok) *ok = i == 0;
        return XPLMGetDataf(e);
    }
    if (types & kindInt) {
        if (ok) *ok = i == 0;
        return XPLMGetDatai(e);
    }
    if (types & kindFloatArray) {
        float v = 0;
        int n = XPLMGetDatavf(e, &v, i, 1);
        if (ok) *ok = n == 1;
        return v;
    }
    if (types & kindIntArray) {
        int v = 0;
        int n = XPLMGetDatavi(e, &v, i, 1);
        if (ok) *ok = n == 1;
        return v;
    }
    if (types & kindData) {
        uint8_t v = 0;
        int n = XPLMGetDatab(e, &v, i, 1);
        if (ok) *ok = n == 1;
        return v;
    }
    return 0;
}

namespace {

bool writeValue(DataEntry* e, double value, int index) {
    int types = typesOf(e);
    int i = index < 0 ? 0 : index;
    if (types & kindDouble) XPLMSetDatad(e, value);
    else if (types & kindFloat) XPLMSetDataf(e, static_cast<float>(value));
    else if (types & kindInt) XPLMSetDatai(e, static_cast<int>(value));
    else if (types & kindFloatArray) {
        float v = static_cast<float>(value);
        XPLMSetDatavf(e, &v, i, 1);
    } else if (types & kindIntArray) {
        int v = static_cast<int>(value);
        XPLMSetDatavi(e, &v, i, 1);
    } else if (types & kindData) {
        uint8_t v = static_cast<uint8_t>(value);
        XPLMSetDatab(e, &v, i, 1);
    } else {
        return false;
    }
    return true;
}

}  // namespace

bool setValue(const std::string& name, double value, int index) {
    ensureInitialized();
    auto& m = table().byName;
    auto it = m.find(name);
    if (it == m.end() || it->second->source == Source::None) return false;
    DataEntry* e = it->second.get();
    if (!XPLMCanWriteDataRef(e)) return false;
    return writeValue(e, value, index);
}

bool forceValue(const std::string& name, double value, int index) {
    ensureInitialized();
    auto& m = table().byName;
    auto it = m.find(name);
    if (it == m.end() || it->second->source == Source::None) return false;
    DataEntry* e = it->second.get();
    if (e->source == Source::Accessor) return writeValue(e, value, index);
    SimDataRef& r = e->sim;
    int i = index < 0 ? 0 : index;
    if (r.types & (kindInt | kindFloat | kindDouble)) r.set(value);
    else if ((r.types & kindFloatArray) && i < static_cast<int>(r.floats.size())) r.floats[i] = static_cast<float>(value);
    else if ((r.types & kindIntArray) && i < static_cast<int>(r.ints.size())) r.ints[i] = static_cast<int>(value);
    else if ((r.types & kindData) && i < static_cast<int>(r.bytes.size())) r.bytes[i] = static_cast<uint8_t>(value);
    else return false;
    afterSimWrite(e);
    return true;
}

}  // namespace xphost
