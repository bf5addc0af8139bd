#!/usr/bin/env bash
# Plants realistic faults one at a time into the code, rebuilds, runs the test
# suite and tells which faults the suite catches. A fault the suite lets
# through marks a hole in the tests. The tree is restored after every fault.
#
#   scripts/plant-faults.sh [BUILD_DIR] [ctest -R regex] [fault id...]
#
# BUILD_DIR must be a configured build of this tree (default: build).
set -uo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
filter=${2:-.}
shift 2 2>/dev/null || shift $#
only=" $* "

# id ~ file ~ text ~ replaced by ~ what the fault is (\n for a line break)
faults=$(cat <<'LIST'
out-restore~triggerio/IOTriggerWidgetOutputs.cpp~                     enableStatusBox(*row, true);\n                     return true;~                     enableStatusBox(*row, true);\n                     return i + 1 < m_OutputRows.size();~the status refresh leaves LineSelector on the last row
src-restore~triggerio/IOTriggerWidgetOutputs.cpp~updateComboBox("LineSource", row->m_pComboSource.data(), true);\n                         enableStatusBox(*row, true);\n                         enableUserValueBox(*row);\n                         return true;~updateComboBox("LineSource", row->m_pComboSource.data(), true);\n                         enableStatusBox(*row, true);\n                         enableUserValueBox(*row);\n                         return i + 1 < m_OutputRows.size();~the source refresh leaves LineSelector moved
polarity~triggerio/IOTriggerWidgetOutputs.cpp~setChecked(polarity == "Invert")~setChecked(polarity == "Normal")~sync-out polarity shown the wrong way round
invert-write~triggerio/IOTriggerWidgetOutputs.cpp~m_pCBInvert->isChecked() ? 1.0 : 0.0~m_pCBInvert->isChecked() ? 0.0 : 1.0~LineInverter written inverted
mask-bit~triggerio/IOTriggerWidgetOutputs.cpp~mask |= quint32(1) << (i % 32);~mask |= quint32(1) << (i % 32 + 1);~level mask bit off by one
sync-source-all~triggerio/IOTriggerWidgetOutputs.cpp~                         if (source == text)~                         if (!text.isEmpty())~sync-out source written to every row
levels-read~triggerio/IOTriggerWidgetUserOutputs.cpp~((levels >> (i % 64)) & 1) != 0~((levels >> (i % 64)) & 2) != 0~level mask read with the wrong bit
userout-restore~triggerio/IOTriggerWidgetUserOutputs.cpp~<< "Error: SetValue(UserOutputValue) retValue == ''";\n                     }\n                     return true;~<< "Error: SetValue(UserOutputValue) retValue == ''";\n                     }\n                     return false;~UserOutputSelector not restored after a user value write
userout-shared~triggerio/IOTriggerWidgetUserOutputs.cpp~            SetOnCBOutUserValueChanged(j, state);~            ;~lines sharing a user output are not written
selout-restore~triggerio/IOTriggerWidgetSelectableOutputs.cpp~updateComboBox("LineMode", m_OptionalOutCombos.at(i), false);\n                     return true;~updateComboBox("LineMode", m_OptionalOutCombos.at(i), false);\n                     return i + 1 < m_OptionalOutCombos.size();~selectable-output refresh leaves LineSelector moved
routing~triggerio/IOTriggerWidgetTriggerInput.cpp~state < 1 ? QString("Off") : QString("Trigger")~state < 1 ? QString("Trigger") : QString("Off")~line routing written the wrong way round
framecount~triggerio/IOTriggerWidgetTriggerInput.cpp~SetValue("AcquisitionFrameCount", static_cast<double>(value))~SetValue("AcquisitionFrameCount", static_cast<double>(value + 1))~frame count written off by one
edge-activation~triggerio/IOTriggerWidgetQuickSettings.cpp~pick(Activation, "FallingEdge"),\n    pick(InputLine, "Line0"),~pick(Activation, "RisingEdge"),\n    pick(InputLine, "Line0"),~edge preset on a routing camera picks the wrong activation
bulk-quirk~triggerio/IOTriggerWidgetQuickSettings.cpp~pick(Activation, "FallinEdge"),\n    pick(TriggerSelector, "AcquisitionStart"),~pick(Activation, "FallingEdge"),\n    pick(TriggerSelector, "AcquisitionStart"),~bulk preset's misspelt activation "fixed"
edge-order~triggerio/IOTriggerWidgetQuickSettings.cpp~    step(CheckRouting),\n    pick(AcquisitionMode, "Continuous"),\n    pick(TriggerMode, "On"),~    step(CheckRouting),\n    pick(TriggerMode, "On"),\n    pick(AcquisitionMode, "Continuous"),~edge preset switches the trigger on before the acquisition mode
dispatch-status~triggerio/IOTriggerWidget.cpp~if (changed.contains("LineStatus"))~if (changed.contains("LineStatu"))~a LineStatus change refreshes nothing
dispatch-quirk~triggerio/IOTriggerWidget.cpp~changed.contains("LineOutlevels")~changed.contains("LineOutLevels")~misspelt refresh name "fixed"
changed-once~tabbase/BaseTabPluginWidget.cpp~    if (!m_pChangedFeatures->contains(name))\n        m_pChangedFeatures->append(name);~    m_pChangedFeatures->append(name);~a name notified twice is queued twice
tick-reregister~tabbase/BaseTabPluginWidget.cpp~    updateInit();\n    RegisterFeatureObserver(false);~    updateInit();~the tick leaves the observer unregistered
alt-name~features/FeatureManager.cpp~    if (!feature && !alt1.isEmpty())\n        feature = GetFeatureByName(alt1);\n    return feature;~    return feature;~the second name alternative is never tried
grid-max~features/FeatureManager.cpp~std::floor((maximum - minimum) / increment * 1.000000000001)~std::ceil((maximum - minimum) / increment)~a maximum off the increment grid is rounded up
gc-locked~orvcpp/genicam/GenICamFeature.cpp~return available && implemented && !locked ? OrvErrorSuccess : OrvErrorInvalidAccess;~return available && implemented ? OrvErrorSuccess : OrvErrorInvalidAccess;~a locked GenICam feature accepts writes
gc-notify~orvcpp/genicam/FeaturePoller.cpp~            observer->FeatureChanged(feature);~            (void)observer;~the backend never notifies
observer-left~tabbase/BaseTabPluginWidget.cpp~    UnRegisterFeatureObserver(true);\n    delete m_pChangedFeatures;~    delete m_pChangedFeatures;~a deleted tab leaves its observers registered
streaming-lock~triggerio/IOTriggerWidgetStreamingLock.cpp~enable(m_pComboTriggerSource, !streaming);~enable(m_pComboTriggerSource, true);~the trigger source stays editable while the camera streams
get-result~plugin/TabExtensionPlugin.cpp~        return e.Result();~        return 0;~an unsupported camera is reported as success
LIST
)

[ -d "$build" ] || { echo "no build in $build: configure one first" >&2; exit 2; }
caught=0; missed=0; stale=0

# The file with a fault in it goes back however the script ends (Ctrl-C, kill, an error).
planted=""
restore() {
    if [ -n "$planted" ] && [ -f "$planted.orig" ]; then
        mv "$planted.orig" "$planted" && touch "$planted"
        echo "restored $planted"
    fi
    planted=""
}
trap restore EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP
while IFS='~' read -r id file from to what; do
    [ -n "$id" ] || continue
    if [ "$only" != "  " ] && [[ "$only" != *" $id "* ]]; then continue; fi
    cp "$file" "$file.orig"
    planted=$file
    if ! FROM="$from" TO="$to" perl -0pi -e 'BEGIN{$f=$ENV{FROM}; $t=$ENV{TO}; $f=~s/\\n/\n/g; $t=~s/\\n/\n/g;} $n += s/\Q$f\E/$t/; END{exit($n == 1 ? 0 : 1)}' "$file"; then
        mv "$file.orig" "$file"; planted=""; echo "STALE   $id: its text is no longer in $file"; stale=$((stale + 1)); continue
    fi
    if ! cmake --build "$build" -j"$(nproc)" >/tmp/plant-build.log 2>&1; then
        echo "BUILD   $id: does not compile (see /tmp/plant-build.log)"
    elif (cd "$build" && ctest -R "$filter" -j"$(nproc)" --timeout 300 >/tmp/plant-$id.log 2>&1); then
        echo "MISSED  $id: $what"; missed=$((missed + 1))
    else
        echo "CAUGHT  $id: $(grep -E '^\s*[0-9]+ - ' /tmp/plant-$id.log | awk '{print $3}' | tr '\n' ' ')"; caught=$((caught + 1))
    fi
    mv "$file.orig" "$file"
    touch "$file"
    planted=""
done <<<"$faults"
cmake --build "$build" -j"$(nproc)" >/dev/null 2>&1
echo "$caught caught, $missed missed, $stale stale"
