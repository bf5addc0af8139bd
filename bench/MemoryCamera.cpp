#include "MemoryCamera.h"

#include "MemoryFeature.h"

#include <algorithm>
#include <cstdio>
#include <memory>

MemoryCamera::MemoryCamera(int featureCount)
    : m_features(new QVector<OrvCPP::shared_ptr<OrvCPP::Feature>>)
{
    using Entries = std::vector<std::string>;
    const Entries userOutputs{"UserOutput0", "UserOutput1", "UserOutput2"};
    std::vector<std::shared_ptr<MemoryFeature>> tab{
        std::make_shared<MemoryFeature>(this, "AcquisitionMode", OrvFeatureDataEnum,
                                        Entries{"Continuous", "SingleFrame", "MultiFrame"}),
        std::make_shared<MemoryFeature>(this, "AcquisitionStart", OrvFeatureDataCommand),
        std::make_shared<MemoryFeature>(this, "AcquisitionStop", OrvFeatureDataCommand),
        std::make_shared<MemoryFeature>(this, "AcquisitionFrameCount", OrvFeatureDataInt),
        std::make_shared<MemoryFeature>(this, "TriggerSelector", OrvFeatureDataEnum,
                                        Entries{"FrameStart", "AcquisitionStart"}),
        std::make_shared<MemoryFeature>(this, "TriggerMode", OrvFeatureDataEnum, Entries{"Off", "On"}),
        std::make_shared<MemoryFeature>(this, "TriggerSource", OrvFeatureDataEnum,
                                        Entries{"Line0", "Line2", "Line3", "Software"}),
        std::make_shared<MemoryFeature>(this, "TriggerActivation", OrvFeatureDataEnum,
                                        Entries{"RisingEdge", "FallingEdge", "AnyEdge", "LevelHigh", "LevelLow"}),
        std::make_shared<MemoryFeature>(this, "TriggerSoftware", OrvFeatureDataCommand),
        std::make_shared<MemoryFeature>(this, "ExposureAuto", OrvFeatureDataEnum, Entries{"Off", "Continuous"}),
        std::make_shared<MemoryFeature>(this, "LineSelector", OrvFeatureDataEnum,
                                        Entries{"Line0", "Line1", "Line2", "Line3"}),
        std::make_shared<MemoryFeature>(this, "LineMode", OrvFeatureDataEnum, Entries{"Output", "Input"}),
        std::make_shared<MemoryFeature>(this, "LineSource", OrvFeatureDataEnum,
                                        Entries{"Off", "ExposureActive", "FrameTriggerWait", "Direct", "UserOutput0",
                                                "UserOutput1", "UserOutput2"}),
        std::make_shared<MemoryFeature>(this, "LineInverter", OrvFeatureDataBool),
        std::make_shared<MemoryFeature>(this, "LineStatus", OrvFeatureDataBool),
        std::make_shared<MemoryFeature>(this, "LineStatusAll", OrvFeatureDataInt),
        std::make_shared<MemoryFeature>(this, "UserOutputSelector", OrvFeatureDataEnum, userOutputs),
        std::make_shared<MemoryFeature>(this, "UserOutputValue", OrvFeatureDataBool)};

    const int fillers = std::max(0, featureCount - int(tab.size()));
    auto addFillers = [&](int from, int to)
    {
        for (int i = from; i < to; ++i)
        {
            char name[32];
            std::snprintf(name, sizeof name, "Filler%05d", i);
            m_features->append(std::make_shared<MemoryFeature>(this, name, OrvFeatureDataInt));
        }
    };
    addFillers(0, fillers / 2);
    for (const auto& feature : tab)
        m_features->append(feature);
    addFillers(fillers / 2, fillers);
}

MemoryCamera::Calls MemoryCamera::calls() const
{
    return m_calls;
}

const char* MemoryCamera::operationName(int operation)
{
    static const char* const names[OperationCount] = {
        "GetName",  "GetDataType", "IsWritable", "IsValueAvailable", "GetValues",          "GetValue",
        "GetRange", "SetValue",    "RunCommand", "RegisterObserver", "UnregisterObserver", "other"};
    return operation >= 0 && operation < OperationCount ? names[operation] : "";
}
