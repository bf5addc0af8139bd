#ifndef GENICAMFEATURE_H
#define GENICAMFEATURE_H

#include <OrvCPP/ExclusiveAccess.h>
#include <OrvCPP/EnumEntryValues.h>
#include <OrvCPP/OrvCPP.h>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

class GenICamDevice;
typedef struct _ArvGcFeatureNode ArvGcFeatureNode;
typedef struct _ArvGcNode ArvGcNode;

// One GenICam feature node of an Aravis device as a camera API feature.
//
// Data types: Integer -> OrvFeatureDataInt, Float -> OrvFeatureDataFloat,
// Enumeration -> OrvFeatureDataEnum, String -> OrvFeatureDataString,
// Boolean -> OrvFeatureDataBool, Command -> OrvFeatureDataCommand, any other
// register -> OrvFeatureDataRaw (read and written as hexadecimal text).
// Numbers may be read and written as long long or double on integer and float
// features alike; text reads work on every type but commands.
//
// A feature is writable when its access mode allows writing, it is available
// (pIsAvailable) and implemented, and it is not locked (pIsLocked). Writes to
// a feature that is not writable return OrvErrorInvalidAccess and reach no
// register. Name, display name, category and type are kept from the opening
// and stay readable after the device is lost; every other call then returns
// OrvErrorDeviceLost at once. A call the device did not answer returns
// OrvErrorTimeout (see GenICamDevice for when timeouts make a device lost).
//
// Reads go through the device's RegisterCache: within one burst of calls a
// register is read from the camera once. After a write, what the description
// says can change with it is read again: the registers written, and those
// below every feature that the written one (or a node its value goes to)
// selects (pSelected) or that names one of them as pInvalidator. Values
// computed from registers (formulas, converters) are computed anew at every
// read from what is kept. A selector's register (what a pIndex or pAddress
// names, or a feature with pSelected) keeps the value written to it: the
// camera takes a selector's entry as written, and a walk over the lines then
// reads no selector back. After a command everything is read again. A feature
// with a volatile register below it (IsVolatile, Cachable NoCache, a
// PollingTime) reads every register from the camera.
//
// An enumeration also tells its entries' integer values (EnumEntryValues).
//
// ExclusiveAccess is the device's (see RegisterCache): any feature of a
// camera brackets the calls on all its features.
class GenICamFeature : public OrvCPP::Feature,
                       public OrvCPP::ExclusiveAccess,
                       public OrvCPP::EnumEntryValues,
                       public std::enable_shared_from_this<GenICamFeature>
{
public:
    GenICamFeature(std::shared_ptr<GenICamDevice> device, ArvGcFeatureNode* node, const std::string& category);
    ~GenICamFeature() override;

    OrvErrorType GetName(std::string& name) override;
    OrvErrorType GetDisplayName(std::string& displayName) override;
    OrvErrorType GetCategory(std::string& category) override;
    OrvErrorType GetDataType(OrvFeatureDataType& dataType) override;
    OrvErrorType IsWritable(bool& writable) override;

    OrvErrorType IsValueAvailable(const char* value, bool& available) override;
    OrvErrorType GetValues(std::vector<std::string>& values) override;

    OrvErrorType GetValue(std::string& value) override;
    OrvErrorType GetValue(double& value) override;
    OrvErrorType GetValue(long long& value) override;
    OrvErrorType GetValue(bool& value) override;

    OrvErrorType GetRange(double& minimum, double& maximum) override;
    OrvErrorType GetRange(long long& minimum, long long& maximum) override;
    OrvErrorType GetIncrement(double& increment) override;
    OrvErrorType GetIncrement(long long& increment) override;

    OrvErrorType SetValue(double value) override;
    OrvErrorType SetValue(long long value) override;
    OrvErrorType SetValue(bool value) override;
    OrvErrorType SetValue(const char* value) override;

    OrvErrorType RunCommand() override;

    bool BeginExclusive(int timeoutMs) override;
    void EndExclusive() override;

    OrvErrorType GetEntryValue(const char* entry, long long& value) override;

    OrvErrorType RegisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer) override;
    OrvErrorType UnregisterObserver(const OrvCPP::shared_ptr<OrvCPP::IFeatureObserver>& observer) override;

    // Value, writability and availability in one text, for change detection.
    std::string stateSnapshot();
    // For the change poller: the setting of the selector registers the feature
    // is indexed by (pIndex, pAddress), its state as stateSnapshot(), whether
    // it can change by itself (a volatile node below it), and the register
    // nodes it depends on (sorted; a write to one of them may change it).
    void observe(std::string& setting, std::string& state, bool& isVolatile, std::vector<const void*>& registers);

    // The device the feature belongs to.
    const std::shared_ptr<GenICamDevice>& device() const
    {
        return m_device;
    }

private:
    template <typename Call> OrvErrorType withDevice(Call call);
    template <typename Call> OrvErrorType write(Call call);

    // The helpers below expect the device lock to be held.

    // Runs one Aravis call that reports failure through a GError (call gets
    // the GError** and returns the result) and keeps the result in out on
    // success. Failures are timed, so that the device can tell a missed answer
    // from a camera that is gone; value: the call reads or writes the
    // feature's value, so its success shows that the device answers.
    template <typename Result, typename Call> OrvErrorType aravis(Result& out, Call call, bool value = false);
    // A write or command through aravis() (call returns nothing).
    template <typename Call> OrvErrorType store(Call call);
    // Whether the value lives in a register of the device (not a constant).
    bool touchesLink();
    // Available and implemented (and not locked, with withLock).
    OrvErrorType accessOf(ArvGcFeatureNode* node, bool withLock, bool& usable);
    OrvErrorType checkReadable();
    OrvErrorType checkWritable();
    bool writableNow();
    OrvErrorType readText(std::string& value);
    // check: whether the feature is readable now is checked first.
    OrvErrorType readNumber(double& value, bool check);
    OrvErrorType readInteger(long long& value, bool check);
    OrvErrorType readFlag(bool& value, bool check);
    OrvErrorType integerLimits(long long& minimum, long long& maximum, long long* increment);
    OrvErrorType floatLimits(double& minimum, double& maximum);
    OrvErrorType findEntry(const char* value, ArvGcFeatureNode*& entry);
    OrvErrorType writeInteger(long long value);
    OrvErrorType writeFloat(double value);
    std::string snapshot();
    void findDependencies();
    // After a write: drops from the cache what the write can have changed.
    void invalidateAfterWrite();

    std::shared_ptr<GenICamDevice> m_device;
    ArvGcFeatureNode* m_node;
    OrvFeatureDataType m_type;
    std::string m_name;
    std::string m_displayName;
    std::string m_category;
    // Found at the first observe(), with the device lock held.
    bool m_dependenciesKnown = false;
    bool m_volatile = true;
    std::vector<ArvGcNode*> m_selectorNodes;
    std::vector<const void*> m_registers;
    bool m_uncached = true;  // a volatile register below it
    bool m_selector = false; // its value is a selector's register
    // The register nodes a write of this feature may change, beside its own;
    // found at the first write.
    bool m_invalidatesKnown = false;
    std::vector<ArvGcNode*> m_invalidates;
    // An enumeration's entries by name, found at the first lookup, with the
    // device lock held.
    bool m_entriesKnown = false;
    std::unordered_map<std::string, ArvGcFeatureNode*> m_entries;
};

#endif
