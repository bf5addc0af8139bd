#!/usr/bin/env bash
# Plants realistic faults one at a time into the code, rebuilds, runs the test
# suite and tells which faults the suite catches. A fault the suite lets
# through marks a hole in the tests. The tree is restored after every fault.
#
#   scripts/plant-faults.sh [BUILD_DIR] [ctest -R regex] [fault id or kind...]
#
# BUILD_DIR must be a configured build of this tree (default: build). With
# PLANT_CHECK=1 each fault is only planted and taken out again (no build, no
# tests): a quick check that every fault's text is still there. Without
# ids or kinds every fault is planted; "scripts/plant-faults.sh build . restore"
# plants those of one kind.
#
# Every fault breaks one rule alone, and every rule of the tables the tab and
# the backend run by has one: each name of the refresh dispatch (dispatch),
# each step of each preset variant (preset-step), each quirky literal the tab
# keeps as it is (literal), each size the tab computes (size), each lookup of a
# feature by alternative names, its order turned round (alt-order), each
# selector walk's restore, dropped or moved (restore), each condition that
# limits a write to the rows it concerns (row-limit), each bound of the fake
# device's memory and each access it guards (device), and some more (other).
# limits a write to the rows it concerns (row-limit), the GenICam reference
# graph's limits and the enumeration lookup (graph), the I/O Monitor's bits,
# sources, gaps, edges, trigger words and dump (monitor), what the Debian
# packages hold and need (package), and some more (other).
# A step that nothing can tell from its absence (it repeats what the steps
# before it left in place) is planted as "equivalent": caught would mean the
# reasoning in its description is wrong.
#
# The loopback viewer test, the installed viewer and the host example are left
# out (PLANT_EXCLUDE): the in-process suites catch every fault here, and those
# three cost the most. The tests run in three rounds, each only when the one
# before passed: the tab and FeatureManager record suites (a few seconds),
# the other fast suites, then the soak and the random descriptions; ctest stops
# at the first failure. The packages' test (debian_packages, 30 to 40 s) is left
# out too, but for the faults of kind "package", which run it and the installed
# viewer's test alone. A caught fault costs a rebuild and a few seconds; its
# log (/tmp/plant-ID.log) names the failing test rows.
set -uo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
filter=${2:-.}
shift 2 2>/dev/null || shift $#
only=" $* "
exclude=${PLANT_EXCLUDE:-^(tst_viewerloopback|viewer_install|host_example|debian_packages)\$}
first='^(tst_triggeriotab|tst_featuremanager)$'
slow='^(tst_soak|tst_random_descriptions)$'
jobs=${PLANT_JOBS:-2}
# A fault that makes a suite hang costs this many seconds (the slowest suite passes in some 20).
timeout=${PLANT_TIMEOUT:-120}

# id ~ kind ~ file[@anchor] ~ text ~ replaced by ~ what the fault is. "\n" is a
# line break. The text must occur once in the file; with an anchor, its first
# occurrence after the anchor is replaced (for the steps the preset tables repeat).
faults=$(cat <<'LIST'
out-restore~restore~triggerio/IOTriggerWidgetOutputs.cpp~                     enableStatusBox(*row, true);\n                     return true;~                     enableStatusBox(*row, true);\n                     return i + 1 < m_OutputRows.size();~the status refresh leaves LineSelector on the last row
src-restore~restore~triggerio/IOTriggerWidgetOutputs.cpp~updateComboBox("LineSource", row->m_pComboSource.data(), true);\n                         enableStatusBox(*row, true);\n                         enableUserValueBox(*row);\n                         return true;~updateComboBox("LineSource", row->m_pComboSource.data(), true);\n                         enableStatusBox(*row, true);\n                         enableUserValueBox(*row);\n                         return i + 1 < m_OutputRows.size();~the source refresh leaves LineSelector moved
polarity~other~triggerio/IOTriggerWidgetOutputs.cpp~setChecked(polarity == "Invert")~setChecked(polarity == "Normal")~sync-out polarity shown the wrong way round
invert-write~other~triggerio/IOTriggerWidgetOutputs.cpp~m_pCBInvert->isChecked() ? 1.0 : 0.0~m_pCBInvert->isChecked() ? 0.0 : 1.0~LineInverter written inverted
mask-bit~other~triggerio/IOTriggerWidgetOutputs.cpp~mask |= quint32(1) << (i % 32);~mask |= quint32(1) << (i % 32 + 1);~level mask bit off by one
sync-source-all~row-limit~triggerio/IOTriggerWidgetOutputs.cpp~                         if (source == text)~                         if (!text.isEmpty())~sync-out source written to every row
levels-read~other~triggerio/IOTriggerWidgetUserOutputs.cpp~((levels >> (i % 64)) & 1) != 0~((levels >> (i % 64)) & 2) != 0~level mask read with the wrong bit
userout-restore~restore~triggerio/IOTriggerWidgetUserOutputs.cpp~<< "Error: SetValue(UserOutputValue) retValue == ''";\n                     }\n                     return true;~<< "Error: SetValue(UserOutputValue) retValue == ''";\n                     }\n                     return false;~UserOutputSelector not restored after a user value write
userout-shared~other~triggerio/IOTriggerWidgetUserOutputs.cpp~            SetOnCBOutUserValueChanged(j, state);~            ;~lines sharing a user output are not written
selout-restore~restore~triggerio/IOTriggerWidgetSelectableOutputs.cpp~updateComboBox("LineMode", m_OptionalOutCombos.at(i), false);\n                     return true;~updateComboBox("LineMode", m_OptionalOutCombos.at(i), false);\n                     return i + 1 < m_OptionalOutCombos.size();~selectable-output refresh leaves LineSelector moved
routing~other~triggerio/IOTriggerWidgetTriggerInput.cpp~state < 1 ? QString("Off") : QString("Trigger")~state < 1 ? QString("Trigger") : QString("Off")~line routing written the wrong way round
framecount~other~triggerio/IOTriggerWidgetTriggerInput.cpp~SetValue("AcquisitionFrameCount", static_cast<double>(value))~SetValue("AcquisitionFrameCount", static_cast<double>(value + 1))~frame count written off by one
edge-activation~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp~pick(Activation, "FallingEdge"),\n    pick(InputLine, "Line0"),~pick(Activation, "RisingEdge"),\n    pick(InputLine, "Line0"),~edge preset on a routing camera picks the wrong activation
bulk-quirk~literal~triggerio/IOTriggerWidgetQuickSettings.cpp~pick(Activation, "FallinEdge"),\n    pick(TriggerSelector, "AcquisitionStart"),~pick(Activation, "FallingEdge"),\n    pick(TriggerSelector, "AcquisitionStart"),~bulk preset's misspelt activation "fixed"
edge-order~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp~    step(CheckRouting),\n    pick(AcquisitionMode, "Continuous"),\n    pick(TriggerMode, "On"),~    step(CheckRouting),\n    pick(TriggerMode, "On"),\n    pick(AcquisitionMode, "Continuous"),~edge preset switches the trigger on before the acquisition mode
dispatch-status~dispatch~triggerio/IOTriggerWidget.cpp~if (changed.contains("LineStatus"))~if (changed.contains("LineStatu"))~a LineStatus change refreshes nothing
dispatch-quirk~literal~triggerio/IOTriggerWidget.cpp~changed.contains("LineOutlevels")~changed.contains("LineOutLevels")~misspelt refresh name "fixed"
changed-once~other~tabbase/BaseTabPluginWidget.cpp~    if (!m_pChangedFeatures->contains(name))\n        m_pChangedFeatures->append(name);~    m_pChangedFeatures->append(name);~a name notified twice is queued twice
tick-reregister~other~tabbase/BaseTabPluginWidget.cpp~    updateInit();\n    RegisterFeatureObserver(false);~    updateInit();~the tick leaves the observer unregistered
alt-name~other~features/FeatureManager.cpp~    if (!feature && !alt1.isEmpty())\n        feature = GetFeatureByName(alt1);\n    return feature;~    return feature;~the second name alternative is never tried
grid-max~other~features/FeatureManager.cpp~std::floor((maximum - minimum) / increment * 1.000000000001)~std::ceil((maximum - minimum) / increment)~a maximum off the increment grid is rounded up
gc-locked~other~orvcpp/genicam/GenICamFeature.cpp~usable = available && implemented && !locked;~usable = available && implemented;~a locked GenICam feature accepts writes
gc-notify~other~orvcpp/genicam/FeaturePoller.cpp~            observer->FeatureChanged(feature);~            (void)observer;~the backend never notifies
observer-left~other~tabbase/BaseTabPluginWidget.cpp~    UnRegisterFeatureObserver(true);\n    delete m_pChangedFeatures;~    delete m_pChangedFeatures;~a deleted tab leaves its observers registered
streaming-lock~other~triggerio/IOTriggerWidgetStreamingLock.cpp~enable(m_pComboTriggerSource, !streaming);~enable(m_pComboTriggerSource, true);~the trigger source stays editable while the camera streams
get-result~other~plugin/TabExtensionPlugin.cpp~        return e.Result();~        return 0;~an unsupported camera is reported as success
d-trigger-source~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("TriggerSource")~changed.contains("TriggerSources")~a TriggerSource change refreshes nothing
d-activation~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("TriggerActivation")~changed.contains("TriggerActivaton")~a TriggerActivation change refreshes nothing
d-trigger-mode~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("TriggerMode")~changed.contains("TriggerModes")~a TriggerMode change refreshes nothing
d-mode-selector~dispatch~triggerio/IOTriggerWidget.cpp~&IOTriggerWidget::updateTriggerMode, &IOTriggerWidget::updateTriggerSelector,~&IOTriggerWidget::updateTriggerMode,~a TriggerMode change leaves the trigger selector as it was
d-mode-activation~dispatch~triggerio/IOTriggerWidget.cpp~&IOTriggerWidget::updateTriggerSelector,\n                 &IOTriggerWidget::updateTriggerActivation});~&IOTriggerWidget::updateTriggerSelector});~a TriggerMode change leaves the activation as it was
d-trigger-selector~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("TriggerSelector")~changed.contains("TriggerSelectors")~a TriggerSelector change refreshes nothing
d-acq-mode~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("AcquisitionMode")~changed.contains("AcquisitionModes")~an AcquisitionMode change refreshes nothing
d-acq-framecount~dispatch~triggerio/IOTriggerWidget.cpp~{&IOTriggerWidget::updateAcquisitionMode, &IOTriggerWidget::updateAcquisitionFrameCount}~{&IOTriggerWidget::updateAcquisitionMode}~an AcquisitionMode change leaves the frame count as it was
d-line-selector~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("LineSelector")~changed.contains("LineSelectors")~a LineSelector change refreshes nothing
d-routing~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("LineRouting")~changed.contains("LineRoutings")~a LineRouting change refreshes nothing
d-exposure-mode~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("ExposureMode")~changed.contains("ExposureModes")~an ExposureMode change refreshes nothing
d-exposure-auto~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("ExposureAuto")~changed.contains("ExposureAutos")~an ExposureAuto change refreshes nothing
d-line-source~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("LineSource")~changed.contains("LineSources")~a LineSource change refreshes nothing
d-syncout-source~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("SyncOutSource")~changed.contains("SyncOutSources")~a SyncOutSource change refreshes nothing
d-lineout-source~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("LineOutSource")~changed.contains("LineOutSources")~a LineOutSource change refreshes nothing
d-inverter~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("LineInverter")~changed.contains("LineInverters")~a LineInverter change refreshes nothing
d-syncout-polarity~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("SyncOutPolarity")~changed.contains("SyncOutPolarities")~a SyncOutPolarity change refreshes nothing
d-lineout-polarity~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("LineOutPolarity")~changed.contains("LineOutPolarities")~a LineOutPolarity change refreshes nothing
d-status-invert~dispatch~triggerio/IOTriggerWidget.cpp~{&IOTriggerWidget::updateOutStatus, &IOTriggerWidget::updateOutInvert}~{&IOTriggerWidget::updateOutStatus}~a LineStatus change leaves the inverters as they were
d-sync-levels~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("SyncOutLevels")~changed.contains("SyncOutLevel")~a SyncOutLevels change refreshes nothing
d-userout-selector~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("UserOutSelector")~changed.contains("UserOutputSelector")~the observed "UserOutSelector" no longer refreshes the user outputs
d-user-value~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("UserOutputValue")~changed.contains("UserOutputValues")~a UserOutputValue change refreshes nothing
d-line-mode~dispatch~triggerio/IOTriggerWidget.cpp~changed.contains("LineMode")~changed.contains("LineModes")~a LineMode change rebuilds nothing
o-rebuild-always~other~triggerio/IOTriggerWidget.cpp~changed.contains("LineMode") && !m_OptionalOutCombos.isEmpty()~changed.contains("LineMode")~a LineMode change rebuilds the outputs of a camera without selectable lines
o-refresh-unblocked~other~triggerio/IOTriggerWidget.cpp~        SetConnectionsDisabled(true);\n        for (auto function : functions)~        for (auto function : functions)~a refresh fills the controls with their signals live
l-framecount-quirk~literal~triggerio/IOTriggerWidget.cpp~changed.contains("AcquisitionFramecount")~changed.contains("AcquisitionFrameCount")~misspelt frame count refresh name "fixed"
l-observed-userout~literal~triggerio/IOTriggerWidget.cpp~"SyncOutLevels",   "UserOutSelector",~"SyncOutLevels",   "UserOutputSelector",~the observed "UserOutSelector" "fixed" to the selector the tab moves itself
l-synoutsource~literal~triggerio/IOTriggerWidgetSelectableOutputs.cpp~GetIsFeatureAvailable("SynOutSource", "LineOutSource")~GetIsFeatureAvailable("SyncOutSource", "LineOutSource")~misspelt "SynOutSource" of the selectable header "fixed"
l-synoutpolarity~literal~triggerio/IOTriggerWidgetSelectableOutputs.cpp~GetIsFeatureAvailable("SynOutPolarity", "LineOutPolarity")~GetIsFeatureAvailable("SyncOutPolarity", "LineOutPolarity")~misspelt "SynOutPolarity" of the selectable header "fixed"
l-levels-caption~literal~triggerio/IOTriggerWidgetOutputs.cpp~? tr("LineOutLevels") : tr("SyncLevels:")~? tr("LineOutLevels:") : tr("SyncLevels:")~the levels caption without a colon given one
l-fallin-auto~literal~triggerio/IOTriggerWidgetQuickSettings.cpp~pick(Activation, "FallinEdge"),\n    pick(TriggerMode, "On"),~pick(Activation, "FallingEdge"),\n    pick(TriggerMode, "On"),~bulk preset's (exposure auto) misspelt activation "fixed"
l-other-combo~literal~triggerio/IOTriggerWidgetTriggerInput.cpp~contains("other"))\n        m_pComboExposureAuto~contains("Off"))\n        m_pComboExposureAuto~exposure auto combo made on "Off" instead of the odd "other"
l-other-label~literal~triggerio/IOTriggerWidgetTriggerInput.cpp~contains("other"))\n        m_pLabelExposureAuto~contains("Off"))\n        m_pLabelExposureAuto~exposure auto caption made on "Off" instead of the odd "other"
l-inputlines~literal~triggerio/IOTriggerWidgetTriggerInput.cpp~contains("InputLines"))~contains("InputLine"))~the taller trigger input group keyed on "InputLine"
l-software~literal~triggerio/IOTriggerWidgetTriggerInput.cpp~source == "Software" ||~source == "TriggerSoftware" ||~software trigger offered on the wrong source name
l-gpo~literal~triggerio/IOTriggerWidgetOutputs.cpp~(lineFamily ? "Direct" : "GPO")~(lineFamily ? "Direct" : "GPIO")~sync-out plain state named "GPIO"
l-direct~literal~triggerio/IOTriggerWidgetOutputs.cpp~(lineFamily ? "Direct" : "GPO")~(lineFamily ? "DirectOut" : "GPO")~output line plain state named "DirectOut"
l-triggerwidth~literal~triggerio/IOTriggerWidgetStreamingLock.cpp~itemText(i) == "TriggerWidth"~itemText(i) == "TriggerControlled"~Level preset enabled on the wrong exposure mode
l-from-level~literal~triggerio/IOTriggerWidgetQuickSettings.cpp~currentText().contains("TriggerWidth")~currentText().contains("TriggerControlled")~bulk preset does not set up the edge first after level
s-output-levels~size~triggerio/IOTriggerWidgetOutputs.cpp~"LineOutLevels") ? 85 : 60) + 35 * count~"LineOutLevels") ? 80 : 60) + 35 * count~Output group of a sync-out camera 5 pixels lower
s-output-plain~size~triggerio/IOTriggerWidgetOutputs.cpp~"LineOutLevels") ? 85 : 60) + 35 * count~"LineOutLevels") ? 85 : 65) + 35 * count~Output group of a line camera 5 pixels higher
s-output-row~size~triggerio/IOTriggerWidgetOutputs.cpp~"LineOutLevels") ? 85 : 60) + 35 * count~"LineOutLevels") ? 85 : 60) + 30 * count~Output rows 30 pixels high
s-trigger-input~size~triggerio/IOTriggerWidgetTriggerInput.cpp~ui->gb_TriggerInput->setMinimumHeight(470);~ui->gb_TriggerInput->setMinimumHeight(460);~trigger input group of a routing camera 460 pixels at least
s-trigger-routing~size~triggerio/IOTriggerWidgetTriggerInput.cpp~m_pCBLineRouting ? 220 : 170~m_pCBLineRouting ? 210 : 170~Trigger group of a routing camera 210 pixels high
s-trigger-plain~size~triggerio/IOTriggerWidgetTriggerInput.cpp~m_pCBLineRouting ? 220 : 170~m_pCBLineRouting ? 220 : 160~Trigger group without routing 160 pixels high
s-acquisition~size~triggerio/IOTriggerWidgetTriggerInput.cpp~m_pGroupAcquisition->setFixedHeight(125);~m_pGroupAcquisition->setFixedHeight(120);~Acquisition group 120 pixels high
s-quick~size~triggerio/IOTriggerWidgetTriggerInput.cpp~m_pGroupQuickSettings->setFixedHeight(75);~m_pGroupQuickSettings->setFixedHeight(70);~Quick Settings group 70 pixels high
s-quick-button~size~triggerio/IOTriggerWidgetTriggerInput.cpp~button->setMinimumHeight(28);~button->setMinimumHeight(24);~preset buttons 24 pixels high at least
s-icon~size~triggerio/IOTriggerWidgetTriggerInput.cpp~QSize(2 * h, static_cast<int>(1.5 * h))~QSize(2 * h, 2 * h)~preset pictograms square
s-combo~size~triggerio/IOTriggerWidgetTriggerInput.cpp~combo->setMinimumSize(90, 25);~combo->setMinimumSize(80, 25);~trigger combo boxes 80 pixels wide at least
s-swtrigger~size~triggerio/IOTriggerWidgetTriggerInput.cpp~m_pButtonSWTrigger->setMaximumHeight(25);~m_pButtonSWTrigger->setMaximumHeight(28);~software trigger button up to 28 pixels high
s-source-width~size~triggerio/IOTriggerWidgetOutputs.cpp~row->m_pComboSource->setMaximumWidth(95);~row->m_pComboSource->setMaximumWidth(90);~output source combos 90 pixels wide at most
s-rebuild-width~size~triggerio/IOTriggerWidget.cpp~            row->m_pComboSource->setMaximumWidth(16777215);~            ;~rebuilt output source combos keep their 95-pixel limit
s-levels-width~size~triggerio/IOTriggerWidgetOutputs.cpp~m_pEditSyncLevels->setMaximumWidth(65);~m_pEditSyncLevels->setMaximumWidth(60);~sync levels field 60 pixels wide at most
s-optional-height~size~triggerio/IOTriggerWidgetSelectableOutputs.cpp~ui->gb_SelectOutput->setMinimumHeight(m_nOptionalOutputs * 55);~ui->gb_SelectOutput->setMinimumHeight(m_nOptionalOutputs * 50);~selectable output group 50 pixels a line at least
s-header-height~size~triggerio/IOTriggerWidgetSelectableOutputs.cpp~label->setMaximumHeight(2);~label->setMaximumHeight(1);~hidden header of the selectable outputs 1 pixel high
r-walk-each~restore~triggerio/IOTriggerWidget.cpp~        if (restore.when == Restore::AfterEachLine)\n            restoreSelector(selector, restore);\n~~a walk that restores after each line never restores
r-walk-end~restore~triggerio/IOTriggerWidget.cpp~    if (restore.when == Restore::AtEnd)\n        restoreSelector(selector, restore);\n~~a walk that restores at the end never restores
r-get-outputs~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AfterEachLine, Restore::OnFailure, "GetOutputs"~{Restore::AtEnd, Restore::OnFailure, "GetOutputs"~output discovery restores LineSelector at the end only
r-outs-index~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AtEnd, Restore::Never, "DetermineOutsIndex"~{Restore::AfterEachLine, Restore::Never, "DetermineOutsIndex"~output index discovery restores after each line
r-first-input-stays~restore~triggerio/IOTriggerWidgetTriggerInput.cpp~                result = entries.at(i);\n                return false;~                result = entries.at(i);\n                return true;~the first-input search puts LineSelector back instead of staying on the input it found
r-src-line~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AtEnd, Restore::Always, "updateOutSource", "SetValue('LineSelector') = "}~{Restore::AfterEachLine, Restore::Always, "updateOutSource", "SetValue('LineSelector') = "}~source refresh restores LineSelector after each row
r-src-sync~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AtEnd, Restore::Always, "updateOutSource", "SetValue('LineOutSelector', 'SyncOutSelector') = "}~{Restore::AfterEachLine, Restore::Always, "updateOutSource", "SetValue('LineOutSelector', 'SyncOutSelector') = "}~source refresh restores the sync-out selector after each row
r-invert-line~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AtEnd, Restore::Always, "updateOutInvert", "SetValue('LineSelector') = "}~{Restore::AfterEachLine, Restore::Always, "updateOutInvert", "SetValue('LineSelector') = "}~inverter refresh restores LineSelector after each row
r-invert-sync~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AfterEachLine, Restore::Always, "updateOutInvert",~{Restore::AtEnd, Restore::Always, "updateOutInvert",~polarity refresh restores the sync-out selector at the end only
r-status~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AtEnd, Restore::Always, "updateOutStatus"~{Restore::AfterEachLine, Restore::Always, "updateOutStatus"~status refresh restores LineSelector after each row
r-src-edit-line~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AtEnd, Restore::OnFailure, "OnComboOutSourceChanged",\n                      "Error: setValue(LineSelector)~{Restore::AfterEachLine, Restore::OnFailure, "OnComboOutSourceChanged",\n                      "Error: setValue(LineSelector)~source edit restores LineSelector after each row
r-src-edit-sync~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AtEnd, Restore::OnFailure, "OnComboOutSourceChanged",\n                      "Error: setValue(LineOutSelector)~{Restore::AfterEachLine, Restore::OnFailure, "OnComboOutSourceChanged",\n                      "Error: setValue(LineOutSelector)~source edit restores the sync-out selector after each row
r-invert-edit-line~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AtEnd, Restore::OnFailure, "OnCBOutInvertChanged", "LineSelector retValue == ''"}~{Restore::AfterEachLine, Restore::OnFailure, "OnCBOutInvertChanged", "LineSelector retValue == ''"}~inverter edit restores LineSelector after each row
r-invert-edit-sync~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AtEnd, Restore::OnFailure, "OnCBOutInvertChanged", "LineOutSelector retValue == ''"}~{Restore::AfterEachLine, Restore::OnFailure, "OnCBOutInvertChanged", "LineOutSelector retValue == ''"}~polarity edit restores the sync-out selector after each row
r-status-edit~restore~triggerio/IOTriggerWidgetOutputs.cpp~{Restore::AtEnd, Restore::OnFailure, "OnCBOutStatusChanged"~{Restore::AfterEachLine, Restore::OnFailure, "OnCBOutStatusChanged"~status edit restores LineSelector after each row
r-first-input~restore~triggerio/IOTriggerWidgetTriggerInput.cpp~{Restore::AfterEachLine, Restore::OnFailure, "GetFirstInput"~{Restore::AtEnd, Restore::OnFailure, "GetFirstInput"~first-input search restores LineSelector at the end only
r-user-value~restore~triggerio/IOTriggerWidgetUserOutputs.cpp~{Restore::AtEnd, Restore::OnFailure, "updateUserOutValue",~{Restore::AfterEachLine, Restore::OnFailure, "updateUserOutValue",~user value refresh restores UserOutputSelector after each row
r-optional~restore~triggerio/IOTriggerWidgetSelectableOutputs.cpp~{Restore::AfterEachLine, Restore::OnFailure, "GetOptionalOutputs",~{Restore::AtEnd, Restore::OnFailure, "GetOptionalOutputs",~selectable line discovery restores LineSelector at the end only
r-optional-update~restore~triggerio/IOTriggerWidgetSelectableOutputs.cpp~{Restore::AtEnd, Restore::Always, "RetValue updateOpt. Out", nullptr}~{Restore::AfterEachLine, Restore::Always, "RetValue updateOpt. Out", nullptr}~selectable line refresh restores LineSelector after each line
r-optional-edit~restore~triggerio/IOTriggerWidgetSelectableOutputs.cpp~{Restore::AtEnd, Restore::OnFailure, "OnComboOptionalOutChanged",~{Restore::AfterEachLine, Restore::OnFailure, "OnComboOptionalOutChanged",~selectable line edit restores LineSelector after each line
r-trigger-mode-back~restore~triggerio/IOTriggerWidgetTriggerInput.cpp~    if (m_pComboInputLineSelector && wasOn)\n        SetComboBoxValue("On", m_pComboTriggerMode);~~the trigger is not switched on again for the new trigger selector
r-routing-back~restore~triggerio/IOTriggerWidgetTriggerInput.cpp~    if (wasChecked)\n        m_pCBLineRouting->setChecked(true);~~the routing is not put back on for the new input line
rl-src-line~row-limit~triggerio/IOTriggerWidgetOutputs.cpp~if (selected && source == text)~if (selected)~line source written to every row
rl-optional-edit~row-limit~triggerio/IOTriggerWidgetSelectableOutputs.cpp~if (selected && combo && combo->currentText() == text)~if (selected && combo)~line mode written to every selectable line
rl-user-shared~row-limit~triggerio/IOTriggerWidgetUserOutputs.cpp~ ||\n                other->m_pComboUserOutSelector->currentText() != userOut->currentText())~)~a user value written to the rows of every user output
rl-user-rows~row-limit~triggerio/IOTriggerWidgetUserOutputs.cpp~        if (!userOut.contains("UserOutput"))\n            continue;\n~~the user value refresh visits rows no user output drives
rl-mask-rows~row-limit~triggerio/IOTriggerWidgetOutputs.cpp~            if (m_OutputRows.at(i)->m_pCBStatus->isChecked())\n~~every row's bit set in the level mask
rl-optional-writable~row-limit~triggerio/IOTriggerWidgetSelectableOutputs.cpp~m_pFeatureManager->GetIsWritable("LineMode") && mode == "Output"~mode == "Output"~lines with a read-only mode offered as selectable
rl-user-own-row~row-limit~triggerio/IOTriggerWidgetUserOutputs.cpp~            if (j == row || !other->m_pComboUserOutSelector ||~            if (!other->m_pComboUserOutSelector ||~the changed row written again with the rows sharing its user output
rl-trigger-selector-routing~row-limit~triggerio/IOTriggerWidgetTriggerInput.cpp~    if (m_pComboInputLineSelector && wasOn)\n        SetComboBoxValue("Off", m_pComboTriggerMode);~    if (wasOn)\n        SetComboBoxValue("Off", m_pComboTriggerMode);~the trigger moved with the selector on cameras without routing too
a-outsel-read~alt-order~triggerio/IOTriggerWidget.cpp~m_pFeatureManager->GetStringValue("LineOutSelector", "SyncOutSelector")~m_pFeatureManager->GetStringValue("SyncOutSelector", "LineOutSelector")~the sync-out selector saved from SyncOutSelector first
a-outsel-write~alt-order~triggerio/IOTriggerWidget.cpp~selector = {"LineOutSelector", "SyncOutSelector",~selector = {"SyncOutSelector", "LineOutSelector",~the sync-out selector written as SyncOutSelector first
a-outputs-entries~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~GetAvailableEnumEntries("LineOutSelector", "SyncOutSelector")~GetAvailableEnumEntries("SyncOutSelector", "LineOutSelector")~sync outputs listed from SyncOutSelector first
a-caption-source~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~GetFeatureName(QStringList() << "LineOutSource"\n                                                                               << "SyncOutSource"~GetFeatureName(QStringList() << "SyncOutSource"\n                                                                               << "LineOutSource"~source caption takes SyncOutSource before LineOutSource
a-caption-source-line~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~<< "SyncOutSource"\n                                                                               << "LineSource");~<< "LineSource"\n                                                                               << "SyncOutSource");~source caption takes LineSource before SyncOutSource
a-caption-invert~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~GetDisplayName(QStringList() << "SyncOutPolarity"\n                                                                               << "LineOutPolarity"~GetDisplayName(QStringList() << "LineOutPolarity"\n                                                                               << "SyncOutPolarity"~invert caption takes LineOutPolarity before SyncOutPolarity
a-caption-invert-line~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~GetDisplayName(QStringList() << "SyncOutPolarity"\n                                                                               << "LineOutPolarity"\n                                                                               << "LineInverter");~GetDisplayName(QStringList() << "LineInverter"\n                                                                               << "SyncOutPolarity"\n                                                                               << "LineOutPolarity");~invert caption takes LineInverter first
a-source-feature~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~GetIsFeatureAvailable("LineOutSource") ? "LineOutSource" : "SyncOutSource"~GetIsFeatureAvailable("SyncOutSource") ? "SyncOutSource" : "LineOutSource"~sync-out sources read from SyncOutSource first
a-polarity-read~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~GetStringValue("LineOutPolarity", "SyncOutPolarity")~GetStringValue("SyncOutPolarity", "LineOutPolarity")~polarity read from SyncOutPolarity first
a-polarity-writable~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~GetIsWritable("LineOutPolarity", "SyncOutPolarity")~GetIsWritable("SyncOutPolarity", "LineOutPolarity")~polarity writability asked of SyncOutPolarity first
a-levels-writable~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~GetIsWritable("LineOutLevels", "SyncOutLevels")~GetIsWritable("SyncOutLevels", "LineOutLevels")~level writability asked of SyncOutLevels first
a-source-write~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~SetValue("LineOutSource", "SyncOutSource", source)~SetValue("SyncOutSource", "LineOutSource", source)~sync-out source written to SyncOutSource first
a-polarity-write~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~SetValue("LineOutPolarity", "SyncOutPolarity", polarity)~SetValue("SyncOutPolarity", "LineOutPolarity", polarity)~polarity written to SyncOutPolarity first
a-levels-write~alt-order~triggerio/IOTriggerWidgetOutputs.cpp~SetValue("LineOutLevels", "SyncOutLevels", static_cast<double>(mask))~SetValue("SyncOutLevels", "LineOutLevels", static_cast<double>(mask))~level mask written to SyncOutLevels first
a-levels-read~alt-order~triggerio/IOTriggerWidgetUserOutputs.cpp~GetValue("LineOutLevels", "SyncOutLevels")~GetValue("SyncOutLevels", "LineOutLevels")~level mask read from SyncOutLevels first
a-fm-pair~alt-order~features/FeatureManager.cpp~    FeaturePtr feature = GetFeatureByName(name);\n    if (!feature && !alt1.isEmpty())\n        feature = GetFeatureByName(alt1);\n    return feature;~    FeaturePtr feature = alt1.isEmpty() ? FeaturePtr() : GetFeatureByName(alt1);\n    if (!feature)\n        feature = GetFeatureByName(name);\n    return feature;~the second of two names tried first
a-fm-third~alt-order~features/FeatureManager.cpp~    FeaturePtr feature = GetFeatureByName(name, alt1);\n    // When~    FeaturePtr feature = alt2.isEmpty() ? FeaturePtr() : GetFeatureByName(alt2);\n    if (!feature)\n        feature = GetFeatureByName(name, alt1);\n    // When~the third of three names tried first
a-fm-name-list~alt-order~features/FeatureManager.cpp~        FeaturePtr feature = GetFeatureByName(name);\n        if (!feature)\n            continue;\n        std::string featureName;~        FeaturePtr feature = GetFeatureByName(names.value(names.size() - 1 - names.indexOf(name)));\n        if (!feature)\n            continue;\n        std::string featureName;~GetFeatureName tries its list from the back
a-fm-display-list~alt-order~features/FeatureManager.cpp~        FeaturePtr feature = GetFeatureByName(name);\n        if (!feature)\n            continue;\n        std::string displayName;~        FeaturePtr feature = GetFeatureByName(names.value(names.size() - 1 - names.indexOf(name)));\n        if (!feature)\n            continue;\n        std::string displayName;~GetDisplayName tries its list from the back
ps-edgeRouting-1~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~pick(ExposureMode, "Timed"),\n    ~~edgeRouting step 1, pick(ExposureMode, "Timed"), left out
ps-edgeRouting-2~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~step(RefreshTriggerSelector),\n    ~~edgeRouting step 2, step(RefreshTriggerSelector), left out
ps-edgeRouting-3~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~pick(TriggerSelector, "ExposureStart"),\n    ~~edgeRouting step 3, pick(TriggerSelector, "ExposureStart"), left out
ps-edgeRouting-4~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~step(Wait200ms),\n    ~~edgeRouting step 4, step(Wait200ms), left out
ps-edgeRouting-5~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~pick(TriggerMode, "Off"),\n    ~~edgeRouting step 5, pick(TriggerMode, "Off"), left out
ps-edgeRouting-6~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~pick(TriggerMode, "Off"),\n    pick(TriggerSelector, "ExposureStart"),~pick(TriggerMode, "Off"),\n    pick(TriggerSelector, "AcquisitionStart"),~edgeRouting step 6, pick(TriggerSelector, "ExposureStart"), picks another selector (left out it repeats step 3: no change)
ps-edgeRouting-7~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~pick(TriggerSource, "InputLines"),\n    ~~edgeRouting step 7, pick(TriggerSource, "InputLines"), left out
ps-edgeRouting-8~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~pick(Activation, "FallingEdge"),\n    ~~edgeRouting step 8, pick(Activation, "FallingEdge"), left out
ps-edgeRouting-9~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~pick(InputLine, "Line0"),\n    ~~edgeRouting step 9, pick(InputLine, "Line0"), left out
ps-edgeRouting-10~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~step(CheckRouting),\n    ~~edgeRouting step 10, step(CheckRouting), left out
ps-edgeRouting-11~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~pick(AcquisitionMode, "Continuous"),\n    ~~edgeRouting step 11, pick(AcquisitionMode, "Continuous"), left out
ps-edgeRouting-12~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeRouting{~\n    pick(TriggerMode, "On"),~~edgeRouting step 12, pick(TriggerMode, "On"), left out
ps-levelRouting-1~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelRouting{~pick(TriggerSource, "InputLines"),\n    ~~levelRouting step 1, pick(TriggerSource, "InputLines"), left out
ps-levelRouting-2~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelRouting{~pick(TriggerMode, "On"),\n    ~~levelRouting step 2, pick(TriggerMode, "On"), left out
ps-levelRouting-3~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelRouting{~pick(ExposureMode, "TriggerWidth"),\n    ~~levelRouting step 3, pick(ExposureMode, "TriggerWidth"), left out
ps-levelRouting-4~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelRouting{~step(RefreshTriggerSelector),\n    ~~levelRouting step 4, step(RefreshTriggerSelector), left out
ps-levelRouting-5~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelRouting{~pick(TriggerSelector, "ExposureActive"),\n    ~~levelRouting step 5, pick(TriggerSelector, "ExposureActive"), left out
ps-levelRouting-6~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelRouting{~pick(TriggerSelector, "ExposureActive"),\n    pick(TriggerSource, "InputLines"),~pick(TriggerSelector, "ExposureActive"),\n    pick(TriggerSource, "Software"),~levelRouting step 6, pick(TriggerSource, "InputLines"), picks another source (left out it repeats step 1 on a combo box nothing has changed since: no change)
ps-levelRouting-7~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelRouting{~pick(Activation, "LowLevel"),\n    ~~levelRouting step 7, pick(Activation, "LowLevel"), left out
ps-levelRouting-8~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelRouting{~step(CheckRouting),\n    ~~levelRouting step 8, step(CheckRouting), left out
ps-levelRouting-9~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelRouting{~pick(InputLine, "Line0"),\n    ~~levelRouting step 9, pick(InputLine, "Line0"), left out
ps-levelRouting-10~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelRouting{~\n    pick(AcquisitionMode, "Continuous"),~~levelRouting step 10, pick(AcquisitionMode, "Continuous"), left out
ps-bulkRouting-1~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~step(EdgeFirstFromLevel),\n    ~~bulkRouting step 1, step(EdgeFirstFromLevel), left out
ps-bulkRouting-2~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~pick(ExposureMode, "Timed"),\n    ~~bulkRouting step 2, pick(ExposureMode, "Timed"), left out
ps-bulkRouting-3~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~step(RefreshTriggerSelector),\n    ~~bulkRouting step 3, step(RefreshTriggerSelector), left out
ps-bulkRouting-4~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~pick(TriggerSelector, "ExposureStart"),\n    ~~bulkRouting step 4, pick(TriggerSelector, "ExposureStart"), left out
ps-bulkRouting-5~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~step(Wait200ms),\n    ~~bulkRouting step 5, step(Wait200ms), left out
ps-bulkRouting-6~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~pick(TriggerMode, "Off"),\n    ~~bulkRouting step 6, pick(TriggerMode, "Off"), left out
ps-bulkRouting-7~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~pick(TriggerSource, "InputLines"),\n    ~~bulkRouting step 7, pick(TriggerSource, "InputLines"), left out
ps-bulkRouting-8~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~pick(Activation, "FallinEdge"),\n    ~~bulkRouting step 8, pick(Activation, "FallinEdge"), left out
ps-bulkRouting-9~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~pick(TriggerSelector, "AcquisitionStart"),\n    ~~bulkRouting step 9, pick(TriggerSelector, "AcquisitionStart"), left out
ps-bulkRouting-10~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~step(CheckRouting),\n    ~~bulkRouting step 10, step(CheckRouting), left out
ps-bulkRouting-11~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~pick(InputLine, "Line0"),\n    ~~bulkRouting step 11, pick(InputLine, "Line0"), left out
ps-bulkRouting-12~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~step(FrameCount10),\n    ~~bulkRouting step 12, step(FrameCount10), left out
ps-bulkRouting-13~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~pick(AcquisitionMode, "MultiFrame"),\n    ~~bulkRouting step 13, pick(AcquisitionMode, "MultiFrame"), left out
ps-bulkRouting-14~equivalent~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~pick(AcquisitionMode, "MultiFrame"),\n    step(CheckRouting),\n    ~pick(AcquisitionMode, "MultiFrame"),\n    ~bulkRouting step 14, step(CheckRouting), left out (step 10 checked the box, and step 11 checks it again whenever it unchecks it: nothing can tell)
ps-bulkRouting-15~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkRouting{~\n    pick(TriggerMode, "On"),~~bulkRouting step 15, pick(TriggerMode, "On"), left out
ps-edgeExposureAuto-1~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeExposureAuto{~step(AllTriggersOff),         ~~edgeExposureAuto step 1, step(AllTriggersOff), left out
ps-edgeExposureAuto-2~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeExposureAuto{~pick(TriggerSelector, "FrameStart"), ~~edgeExposureAuto step 2, pick(TriggerSelector, "FrameStart"), left out
ps-edgeExposureAuto-3~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeExposureAuto{~pick(Activation, "FallingEdge"),\n    ~~edgeExposureAuto step 3, pick(Activation, "FallingEdge"), left out
ps-edgeExposureAuto-4~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeExposureAuto{~pick(TriggerSource, "Line1"), ~~edgeExposureAuto step 4, pick(TriggerSource, "Line1"), left out
ps-edgeExposureAuto-5~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeExposureAuto{~pick(AcquisitionMode, "Continuous"), ~~edgeExposureAuto step 5, pick(AcquisitionMode, "Continuous"), left out
ps-edgeExposureAuto-6~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeExposureAuto{~pick(ExposureAuto, "Off"),\n    ~~edgeExposureAuto step 6, pick(ExposureAuto, "Off"), left out
ps-edgeExposureAuto-7~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeExposureAuto{~step(ProcessEvents),          ~~edgeExposureAuto step 7, step(ProcessEvents), left out
ps-edgeExposureAuto-8~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeExposureAuto{~pick(TriggerSource, "Line1"),        ~~edgeExposureAuto step 8, pick(TriggerSource, "Line1"), left out
ps-edgeExposureAuto-9~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeExposureAuto{~        pick(TriggerMode, "On"),~~edgeExposureAuto step 9, pick(TriggerMode, "On"), left out
ps-levelExposureAuto-1~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelExposureAuto{~step(AllTriggersOff),         ~~levelExposureAuto step 1, step(AllTriggersOff), left out
ps-levelExposureAuto-2~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelExposureAuto{~pick(TriggerSelector, "FrameStart"),\n    ~~levelExposureAuto step 2, pick(TriggerSelector, "FrameStart"), left out
ps-levelExposureAuto-3~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelExposureAuto{~pick(TriggerSource, "Line1"), ~~levelExposureAuto step 3, pick(TriggerSource, "Line1"), left out
ps-levelExposureAuto-4~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelExposureAuto{~pick(AcquisitionMode, "Continuous"),\n    ~~levelExposureAuto step 4, pick(AcquisitionMode, "Continuous"), left out
ps-levelExposureAuto-5~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelExposureAuto{~pick(ExposureAuto, "other"),  ~~levelExposureAuto step 5, pick(ExposureAuto, "other"), left out
ps-levelExposureAuto-6~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelExposureAuto{~step(ProcessEvents),\n    ~~levelExposureAuto step 6, step(ProcessEvents), left out
ps-levelExposureAuto-7~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelExposureAuto{~step(ProcessEvents),\n    pick(TriggerSource, "Line1"), ~step(ProcessEvents),\n    ~levelExposureAuto step 7, pick(TriggerSource, "Line1"), left out
ps-levelExposureAuto-8~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelExposureAuto{~pick(Activation, "LevelLow"),\n    ~~levelExposureAuto step 8, pick(Activation, "LevelLow"), left out
ps-levelExposureAuto-9~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps levelExposureAuto{~\n    pick(TriggerMode, "On"),~~levelExposureAuto step 9, pick(TriggerMode, "On"), left out
ps-bulkExposureAuto-1~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureAuto{~step(AllTriggersOff),\n    ~~bulkExposureAuto step 1, step(AllTriggersOff), left out
ps-bulkExposureAuto-2~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureAuto{~pick(TriggerSelector, "AcquisitionStart"),\n    ~~bulkExposureAuto step 2, pick(TriggerSelector, "AcquisitionStart"), left out
ps-bulkExposureAuto-3~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureAuto{~pick(TriggerSource, "Line1"),\n    ~~bulkExposureAuto step 3, pick(TriggerSource, "Line1"), left out
ps-bulkExposureAuto-4~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureAuto{~pick(AcquisitionMode, "MultiFrame"),\n    ~~bulkExposureAuto step 4, pick(AcquisitionMode, "MultiFrame"), left out
ps-bulkExposureAuto-5~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureAuto{~pick(ExposureAuto, "Off"),\n    ~~bulkExposureAuto step 5, pick(ExposureAuto, "Off"), left out
ps-bulkExposureAuto-6~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureAuto{~step(FrameCount10),\n    ~~bulkExposureAuto step 6, step(FrameCount10), left out
ps-bulkExposureAuto-7~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureAuto{~step(ProcessEvents),\n    ~~bulkExposureAuto step 7, step(ProcessEvents), left out
ps-bulkExposureAuto-8~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureAuto{~step(ProcessEvents),\n    pick(TriggerSource, "Line1"),\n    ~step(ProcessEvents),\n    ~bulkExposureAuto step 8, pick(TriggerSource, "Line1"), left out
ps-bulkExposureAuto-9~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureAuto{~pick(Activation, "FallinEdge"),\n    ~~bulkExposureAuto step 9, pick(Activation, "FallinEdge"), left out
ps-bulkExposureAuto-10~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureAuto{~\n    pick(TriggerMode, "On"),~~bulkExposureAuto step 10, pick(TriggerMode, "On"), left out
ps-edgeOrLevelExposureMode-1~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~pick(ExposureMode, presetValue),\n    ~~edgeOrLevelExposureMode step 1, pick(ExposureMode, presetValue), left out
ps-edgeOrLevelExposureMode-2~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~pick(TriggerSelector, "AcquisitionStart"),\n    ~~edgeOrLevelExposureMode step 2, pick(TriggerSelector, "AcquisitionStart"), left out
ps-edgeOrLevelExposureMode-3~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~step(ProcessEvents),\n    ~~edgeOrLevelExposureMode step 3, step(ProcessEvents), left out
ps-edgeOrLevelExposureMode-4~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~pick(TriggerMode, "Off"),\n    ~~edgeOrLevelExposureMode step 4, pick(TriggerMode, "Off"), left out
ps-edgeOrLevelExposureMode-5~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~pick(TriggerSelector, "FrameStart"),\n    ~~edgeOrLevelExposureMode step 5, pick(TriggerSelector, "FrameStart"), left out
ps-edgeOrLevelExposureMode-6~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~pick(TriggerSelector, "FrameStart"),\n    step(ProcessEvents),\n    ~pick(TriggerSelector, "FrameStart"),\n    ~edgeOrLevelExposureMode step 6, step(ProcessEvents), left out
ps-edgeOrLevelExposureMode-7~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~pick(TriggerSelector, "FrameStart"),\n    step(ProcessEvents),\n    pick(TriggerMode, "Off"),\n    ~pick(TriggerSelector, "FrameStart"),\n    step(ProcessEvents),\n    ~edgeOrLevelExposureMode step 7, pick(TriggerMode, "Off"), left out
ps-edgeOrLevelExposureMode-8~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~step(SelectFirstInput, TriggerSource),\n    ~~edgeOrLevelExposureMode step 8, step(SelectFirstInput, TriggerSource), left out
ps-edgeOrLevelExposureMode-9~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~pick(Activation, "FallingEdge"),\n    ~~edgeOrLevelExposureMode step 9, pick(Activation, "FallingEdge"), left out
ps-edgeOrLevelExposureMode-10~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~pick(AcquisitionMode, "Continuous"),\n    ~~edgeOrLevelExposureMode step 10, pick(AcquisitionMode, "Continuous"), left out
ps-edgeOrLevelExposureMode-11~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps edgeOrLevelExposureMode{~\n    pick(TriggerMode, "On"),~~edgeOrLevelExposureMode step 11, pick(TriggerMode, "On"), left out
ps-bulkExposureMode-1~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~pick(ExposureMode, "Timed"),\n    ~~bulkExposureMode step 1, pick(ExposureMode, "Timed"), left out
ps-bulkExposureMode-2~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~pick(TriggerSelector, "FrameStart"),\n    ~~bulkExposureMode step 2, pick(TriggerSelector, "FrameStart"), left out
ps-bulkExposureMode-3~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~step(ProcessEvents),\n    ~~bulkExposureMode step 3, step(ProcessEvents), left out
ps-bulkExposureMode-4~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~pick(TriggerMode, "Off"),\n    ~~bulkExposureMode step 4, pick(TriggerMode, "Off"), left out
ps-bulkExposureMode-5~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~pick(TriggerSelector, "AcquisitionStart"),\n    ~~bulkExposureMode step 5, pick(TriggerSelector, "AcquisitionStart"), left out
ps-bulkExposureMode-6~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~step(Wait200ms),\n    ~~bulkExposureMode step 6, step(Wait200ms), left out
ps-bulkExposureMode-7~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~step(Wait200ms),\n    pick(TriggerMode, "Off"),\n    ~step(Wait200ms),\n    ~bulkExposureMode step 7, pick(TriggerMode, "Off"), left out
ps-bulkExposureMode-8~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~step(SelectFirstInput, TriggerSource),\n    ~~bulkExposureMode step 8, step(SelectFirstInput, TriggerSource), left out
ps-bulkExposureMode-9~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~pick(Activation, "FallingEdge"),\n    ~~bulkExposureMode step 9, pick(Activation, "FallingEdge"), left out
ps-bulkExposureMode-10~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~pick(AcquisitionMode, "MultiFrame"),\n    ~~bulkExposureMode step 10, pick(AcquisitionMode, "MultiFrame"), left out
ps-bulkExposureMode-11~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~step(FrameCount10),\n    ~~bulkExposureMode step 11, step(FrameCount10), left out
ps-bulkExposureMode-12~preset-step~triggerio/IOTriggerWidgetQuickSettings.cpp@const Steps bulkExposureMode{~\n    pick(TriggerMode, "On"),~~bulkExposureMode step 12, pick(TriggerMode, "On"), left out
pl-starve~poller~orvcpp/genicam/FeaturePoller.cpp~self->written ? std::min(quietAgain, std::max(halfPeriod, self->lastWrite + self->quietTime() / 5))~self->written ? quietAgain~writes that never pause for long hold the look off for ever
pl-writer-looks~poller~orvcpp/genicam/FeaturePoller.cpp~    if (m_state->pendingBaselines == 0 || m_state->threadId == std::this_thread::get_id())\n        return;~    if (m_state->threadId == std::this_thread::get_id())\n        return;\n    lock.unlock();\n    m_state->look(false);\n    return;~a writer looks by itself and tells observers on its own thread
pl-away~poller~orvcpp/genicam/FeaturePoller.cpp~                entry.missed.push_back(gone);~                (void)gone;~a change is not kept for an observer that is away
pl-owed~poller~orvcpp/genicam/FeaturePoller.cpp~changed ? entry.observers : item.owed;~changed || !item.owed.empty() ? entry.observers : item.owed;~a change owed to one observer told again to every observer
pl-unobserved~poller~orvcpp/genicam/FeaturePoller.cpp~(!entry.known || entry.stage == Stage::WrittenUnobserved)~(!entry.known)~a change made while nobody observed is told to the next observer
pl-setting~poller~orvcpp/genicam/FeaturePoller.cpp~(seen != entry.bySetting.end() ? seen->second : entry.last) != now~entry.last != now~states compared across selector settings
pl-own~poller~orvcpp/genicam/FeaturePoller.cpp~item.first == writer || entry.stage == Stage::WrittenOwn ? Stage::WrittenOwn : Stage::Written~entry.stage == Stage::WrittenOwn ? Stage::WrittenOwn : Stage::Written~a write through a feature's own handle is not told as such
pl-baseline-write~poller~orvcpp/genicam/FeaturePoller.cpp~                if (entry.stage == Stage::Baseline)\n                    continue;~~a write before the first reading turns it into a change
dv-patience~device~orvcpp/genicam/GenICamDevice.cpp~            if (m_timedOut > m_patience)~            if (m_timedOut > m_patience + m_patience)~timeouts count as a loss only after twice the patience
dv-answered~device~orvcpp/genicam/GenICamDevice.h~    {\n        m_timedOut = Duration::zero();\n    }~    {\n    }~an answer does not start the timeouts afresh
dv-late-handler~device~orvcpp/genicam/GenICamDevice.cpp~    if (isLost())\n        reportLost();~~a lost handler set after the loss never hears of it
dv-first-reason~device~orvcpp/genicam/GenICamDevice.cpp~        if (m_lost.load())\n            return; // the first reason stays~        if (false)\n            return;~a loss reported again, its reason overwritten
dv-retake~device~orvcpp/genicam/GenICamDevice.cpp~                if (device && arv_gv_device_take_control(device, &error) && arv_gv_device_is_controller(device))\n                    return; // ours again: Aravis's heartbeat runs on~                return;~control lost to a silence is never taken back
fd-serial~finder~viewer/CameraFinder.cpp~else if (!serial.isEmpty() && !camera->serialNumber().isEmpty() && camera->serialNumber() != serial)~else if (false)~another camera at the same address is taken
fd-retry~finder~viewer/CameraFinder.cpp~    emit missed(reason);\n    m_next.start();~    emit missed(reason);~the search ends after one failed attempt
dev-xml-twice~device~orvcpp/genicam/GuardedFakeDevice.cpp~ARV_FAKE_CAMERA_MEMORY_SIZE + guint64(xmlSize)~ARV_FAKE_CAMERA_MEMORY_SIZE + 2 * guint64(xmlSize)~the fake device's memory ends the description's size too late: reads run past it
dev-no-xml~device~orvcpp/genicam/GuardedFakeDevice.cpp~ARV_FAKE_CAMERA_MEMORY_SIZE + guint64(xmlSize)~ARV_FAKE_CAMERA_MEMORY_SIZE~the fake device's description refused as outside its memory
dev-end-one~device~orvcpp/genicam/GuardedFakeDevice.cpp~size <= end - address~size < end - address~the last bytes of the fake device's memory refused
dev-wrap~device~orvcpp/genicam/GuardedFakeDevice.cpp~address <= end && size <= end - address~address + size <= end~an address that wraps round past zero let through
dev-read-memory~device~orvcpp/genicam/GuardedFakeDevice.cpp~return allowed(device, address, size, error) && parentClass->read_memory(~return parentClass->read_memory(~a memory read past the fake device's end let through
dev-write-memory~device~orvcpp/genicam/GuardedFakeDevice.cpp~return allowed(device, address, size, error) && parentClass->write_memory(~return parentClass->write_memory(~a memory write past the fake device's end let through
dev-read-register~device~orvcpp/genicam/GuardedFakeDevice.cpp~return allowed(device, address, 4, error) && parentClass->read_register(~return parentClass->read_register(~a register read past the fake device's end let through
dev-write-register~device~orvcpp/genicam/GuardedFakeDevice.cpp~return allowed(device, address, 4, error) && parentClass->write_register(~return parentClass->write_register(~a register write past the fake device's end let through
dev-not-chained~device~orvcpp/genicam/GuardedFakeDevice.cpp~&& parentClass->read_memory(device, address, size, buffer, error)~&& buffer~a memory read the guard allows is not handed on to the fake camera
dev-plain~device~orvcpp/genicam/GenICamCamera.cpp~GuardedFakeDevice::create(serialNumber~arv_fake_device_new(serialNumber~models open on Aravis's own, unguarded fake device
v-disabled~viewer~viewer/ViewerWindow.cpp~    m_tabs->setEnabled(false);\n~~the pages stay enabled while the camera is lost
v-result4~viewer~viewer/ViewerWindow.cpp~if (result == 4)~if (result == -4)~a plug-in that does not serve the camera (result 4) is named as a problem
v-modal~viewer~viewer/ViewerWindow.cpp~QApplication::activeModalWidget() || ~~the pages are rebuilt under an open modal dialog
v-popup~viewer~viewer/ViewerWindow.cpp~ || QApplication::activePopupWidget()~~the pages are rebuilt under an open popup
v-current~viewer~viewer/ViewerWindow.cpp~m_tabs->setCurrentIndex(page);~m_tabs->setCurrentIndex(0);~the first page is current after a rebuild
v-carry~viewer~viewer/ViewerWindow.cpp~buildPages(carried) == 0~buildPages() == 0~the rebuild hands no page's history on
v-handover~viewer~iomonitor/IOMonitorWidget.cpp~        m_history->traces.push_back(std::move(row->trace));~        (void)row;~a deleted monitor page offers no traces
v-settings~viewer~iomonitor/IOMonitorWidget.cpp~        ui->sb_Window->setValue(m_before->seconds);\n~~the monitor's time window is not taken over
v-gap~viewer~iomonitor/IOMonitorWidget.cpp~        m_pSampleTimer->stop();\n        markNotSampled(0, int(m_rows.size()) - 1);~        m_pSampleTimer->stop();~time not sampled is drawn as the last level held
g-chain-limit~graph~orvcpp/genicam/GenICamReferenceGraph.cpp~deep ? depth[state] <= MaxChainLength~deep ? depth[state] < MaxChainLength~a chain exactly at the length limit is refused
g-eval-limit~graph~orvcpp/genicam/GenICamReferenceGraph.h~MaxEvaluations = 50000;~MaxEvaluations = 500000;~the evaluation limit ten times higher
g-eval-sum~graph~orvcpp/genicam/GenICamReferenceGraph.cpp~evaluations = std::min(evaluations + times * cost[target], 1e300);~evaluations = std::max(evaluations, 1 + times * cost[target]);~a node shared by several references counted once (as if Aravis cached values)
g-register-twice~graph~orvcpp/genicam/GenICamReferenceGraph.cpp~const int times = m_register[node] ? 2 : 1;~const int times = 1;~a register's address and length counted once a read
g-follow-available~graph~orvcpp/genicam/GenICamReferenceGraph.cpp~    case ARV_GC_PROPERTY_NODE_TYPE_P_IS_IMPLEMENTED:\n    case ARV_GC_PROPERTY_NODE_TYPE_P_IS_AVAILABLE:~    case ARV_GC_PROPERTY_NODE_TYPE_P_IS_IMPLEMENTED:~pIsAvailable not followed for loops
g-follow-address~graph~orvcpp/genicam/GenICamReferenceGraph.cpp~    case ARV_GC_PROPERTY_NODE_TYPE_P_VARIABLE:\n    case ARV_GC_PROPERTY_NODE_TYPE_P_ADDRESS:~    case ARV_GC_PROPERTY_NODE_TYPE_P_VARIABLE:~pAddress not followed for loops
g-follow-selected~graph~orvcpp/genicam/GenICamReferenceGraph.cpp~    case ARV_GC_PROPERTY_NODE_TYPE_P_IS_LOCKED:~    case ARV_GC_PROPERTY_NODE_TYPE_P_IS_LOCKED:\n    case ARV_GC_PROPERTY_NODE_TYPE_P_SELECTED:~pSelected followed for loops (every selector is a loop)
g-loop-order~graph~orvcpp/genicam/GenICamReferenceGraph.cpp~for (size_t start = 0; start < m_names.size(); ++start)~for (size_t start = m_names.size(); start-- > 0;)~the loop reported is the last in document order
g-overload-order~graph~orvcpp/genicam/GenICamReferenceGraph.cpp@The first node in document order~for (size_t state = 0; state < count; ++state)~for (size_t state = count; state-- > 0;)~the overload reported is the last node in document order
g-entry-own~graph~orvcpp/genicam/GenICamFeature.cpp~    const auto found = m_entries.find(value);\n    if (found == m_entries.end())\n        return OrvErrorInvalidValue;\n    entry = found->second;~    ArvGcNode* named = arv_gc_get_node(m_device->genicam(), value);\n    if (!ARV_IS_GC_ENUM_ENTRY(named))\n        return OrvErrorInvalidValue;\n    entry = ARV_GC_FEATURE_NODE(named);~an entry looked up among all the description's names, not only its enumeration's
g-entry-first~graph~orvcpp/genicam/GenICamFeature.cpp~m_entries.emplace(name, node);~m_entries.insert_or_assign(name, node);~of two equally named entries the last in Aravis's list counts, not the one Aravis writes
g-entry-index~graph~orvcpp/genicam/GenICamFeature.cpp~        m_entriesKnown = true;\n~~the entry index is built anew at every lookup (a walk per entry asked for)
g-values-order~graph~orvcpp/genicam/GenICamFeature.cpp~            std::reverse(names.begin(), names.end());\n~~entries listed in Aravis's (reversed) order
m-bit-number~monitor~iomonitor/LineSampler.cpp~        bits << bit;~        bits << int(bits.size());~LineStatusAll read at the line's position in the selector, not at the number its name ends in
m-source-order~monitor~iomonitor/LineSampler.cpp~m_source = m_statusAll ? StatusAll : m_status ? StatusWalk : NoLevels;~m_source = m_status ? StatusWalk : m_statusAll ? StatusAll : NoLevels;~the LineSelector walk preferred to the one read of LineStatusAll
m-mask-bit~monitor~iomonitor/LineSampler.cpp~outputs, m_statusAll != nullptr);~outputs, true);~a sync output's level mask bit taken from the number its name ends in, not its position
m-all-gap~monitor~iomonitor/LineSampler.cpp~    if (!readInteger(m_statusAll, &all))\n        return levels;~    readInteger(m_statusAll, &all);~a failed LineStatusAll read gives low levels, not a gap
m-walk-gap~monitor~iomonitor/LineSampler.cpp~        if (m_status->GetValue(high) == OrvErrorSuccess)\n            levels[i] = high ? 1 : 0;~        m_status->GetValue(high);\n        levels[i] = high ? 1 : 0;~a failed LineStatus read gives a low level, not a gap
m-mask-gap~monitor~iomonitor/LineSampler.cpp~if (line.inputMask ? inputsRead : outputsRead)~if (line.inputMask ? m_inLevels : m_outLevels)~a level mask that exists counts as read, also when its read failed
m-edge-gap~monitor~iomonitor/SignalTrace.cpp~    if (level == Unknown)\n        return;~    if (level == Unknown)\n    {\n        m_lastKnown = Unknown;\n        return;\n    }~no edge counted across a gap
m-unknown-level~monitor~iomonitor/SignalTrace.cpp~    if (level == Unknown)\n        return;\n~~an Unknown sample taken as a level when edges are counted
m-edge-direction~monitor~iomonitor/SignalTrace.cpp~++(level ? m_rising : m_falling);~++(level ? m_falling : m_rising);~rising and falling edges counted the wrong way round
m-trig-none~monitor~iomonitor/TriggerMonitor.cpp~GetIsFeatureAvailable("TriggerMode")~GetIsFeatureAvailable("TriggerSelector")~a camera without a trigger selector told as one without a trigger
m-trig-free~monitor~iomonitor/TriggerMonitor.cpp~        if (selector.isEmpty() || selector == "FrameStart")~        if (selector.isEmpty())~the frame start trigger off told as a trigger off, not free running
m-trig-software~monitor~iomonitor/TriggerMonitor.cpp~    if (source == "Software")~    if (source == "SoftwareTrigger")~a software trigger source not recognised
m-trig-rising~monitor~iomonitor/TriggerMonitor.cpp~    if (activation == "RisingEdge")~    if (activation == "Rising")~a rising edge activation not recognised
m-trig-fallin~monitor~iomonitor/TriggerMonitor.cpp~activation == "FallingEdge" || activation == "FallinEdge"~activation == "FallingEdge"~the misspelt "FallinEdge" not told as a falling edge
m-vcd-x~monitor~iomonitor/VcdWriter.cpp~SignalTrace::Unknown ? 'x' : level~SignalTrace::Unknown ? 'z' : level~an unknown level written as z (high impedance), not x
m-vcd-timescale~monitor~iomonitor/VcdWriter.cpp~$timescale 1ms~$timescale 1us~millisecond time stamps declared as microseconds
m-vcd-origin~monitor~iomonitor/VcdWriter.cpp~QByteArray::number(it.key() - fromMs)~QByteArray::number(it.key())~sample times written on the monitor's clock, not from the start of the dump
m-vcd-stamp~monitor~iomonitor/VcdWriter.cpp~        out += '#' + QByteArray::number(it.key() - fromMs)~        bool changes = false;\n        for (int i = 0; i < traces.size(); ++i)\n            changes |= last.at(i) != (it.value().at(i) == NotSampled ? SignalTrace::Unknown : it.value().at(i));\n        if (!changes)\n            continue;\n        out += '#' + QByteArray::number(it.key() - fromMs)~a sample that changes no level gets no time stamp
m-walk-restore~monitor~iomonitor/SelectorWalk.cpp~    if (current != savedEntry && selector->SetValue(saved.c_str()) != OrvErrorSuccess &&~    if (current != savedEntry && selector->SetValue(current.toStdString().c_str()) != OrvErrorSuccess &&~the walk "restores" the selector to the last entry it read
m-walk-first~monitor~iomonitor/SelectorWalk.cpp~    const int first = entries.indexOf(savedEntry);~    const int first = -1;~the entry the selector stands on is written and read in turn like the others
pkg-lib-component~package~orvcpp/genicam/CMakeLists.txt~COMPONENT Library NAMELINK_COMPONENT Development~COMPONENT Runtime NAMELINK_COMPONENT Development~the backend library shipped in the viewer's package, not in one named after its SONAME
pkg-namelink~package~orvcpp/genicam/CMakeLists.txt~NAMELINK_COMPONENT Development~NAMELINK_COMPONENT Library~the link name libtriggerio-genicam.so in the library package, not in triggerio-dev
pkg-dev-depends~package~packaging/CMakeLists.txt~"${TRIGGERIO_LIBRARY_PACKAGE} (= ${CPACK_PACKAGE_VERSION}), qtbase5-dev~"triggerio (= ${CPACK_PACKAGE_VERSION}), qtbase5-dev~triggerio-dev depends on the viewer's package
pkg-dev-recommends~package~packaging/CMakeLists.txt~CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS triggerio~CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS triggerio~triggerio-dev recommends the viewer's package, which apt installs along
pkg-app-depends~package~packaging/CMakeLists.txt~set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS ~set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS_UNUSED ~the viewer's package does not depend on the library package
pkg-shlibs~package~packaging/CMakeLists.txt~set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)~set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS OFF)~the library package has no shlibs file
pkg-shlibs-policy~package~packaging/CMakeLists.txt~set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")~~programs linked against the library need its exact version
pkg-trigger~package~packaging/CMakeLists.txt~set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/triggers)~~the library package does not activate the ldconfig trigger
pkg-pc-dir~package~packaging/CMakeLists.txt~DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT Development~DESTINATION lib/pkgconfig COMPONENT Development~triggerio.pc outside the multiarch folder
pkg-pc-prefix~package~packaging/CMakeLists.txt~set(PC_PREFIX "\${pcfiledir}/${PC_PREFIX_FROM_PCFILEDIR}")~set(PC_PREFIX "${CMAKE_INSTALL_PREFIX}")~triggerio.pc names the configured prefix wherever it is installed
pkg-plugin-bin~package~plugin/CMakeLists.txt~LIBRARY DESTINATION ${TRIGGERIO_INSTALL_PLUGINDIR} COMPONENT Runtime~LIBRARY DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime~the tab plug-in installed into bin/
pkg-plugindir-check~package~packaging/TriggerIOConfig.cmake.in~set(TriggerIO_PLUGIN_DIR ~set_and_check(TriggerIO_PLUGIN_DIR ~the CMake package fails where the plug-ins are not installed (triggerio-dev alone)
pkg-manpage~package~packaging/CMakeLists.txt~install(FILES ${CMAKE_CURRENT_BINARY_DIR}/triggerio-viewer.1.gz\n    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT Runtime)~~the viewer's package without its manual page
ch-demo~chooser~viewer/CameraChooser.cpp~tr("Demo: %1")~tr("%1")~the demo models are not marked as demos
ch-serial~chooser~viewer/CameraChooser.cpp~item->setText(SerialColumn, device.serial);~item->setText(SerialColumn, device.id);~the serial number column shows the device id
ch-last~chooser~viewer/CameraChooser.cpp~            m_entries.move(i, 0);~            ;~the camera opened last is not offered first
ch-remember~chooser~viewer/CameraChooser.cpp~    rememberOpened(id);\n    fill();~    fill();~the camera opened is not remembered
ch-periodic~chooser~viewer/CameraChooser.cpp~    refresh();\n    m_refresh.start();~    refresh();~the list is not refreshed while it is shown
ch-reason~chooser~viewer/CameraChooser.cpp~        m_problems.insert(id, reason);\n        fill();~        fill();~a camera that cannot be opened does not say why
ch-control~chooser~viewer/CameraDiscovery.cpp~& 0x3) ? Control::Elsewhere~& 0x4) ? Control::Elsewhere~a camera another application controls is shown free
ch-open-shown~chooser~viewer/ViewerWindow.cpp~    m_views->setCurrentWidget(m_cameraView);\n    setCameraStatus~    setCameraStatus~a camera opened in the chooser is not shown
ch-page-english~chooser~viewer/ViewerWindow.cpp~            if (QCoreApplication::translate(widget->metaObject()->className(), english.constData()) ==~            if (english ==~--page takes only the title in the language shown
ch-number~chooser~viewer/main.cpp~    if (ok && *value >= 0)~    if (*value >= 0)~a numeric option that is no number is taken as 0
gt-start~gui-thread~viewer/CameraStream.cpp~    if (m_wanted)\n    {\n        GenICamCamera::runInBackground(~    if (m_wanted)\n    {\n        std::invoke(~the acquisition starts on the GUI thread
gt-stop~gui-thread~viewer/CameraStream.cpp~    else\n    {\n        GenICamCamera::runInBackground(~    else\n    {\n        std::invoke(~the acquisition stops on the GUI thread
gt-trigger~gui-thread~viewer/ViewerWindow.cpp~        m_stream->runCommand(feature);~        feature->RunCommand();~the viewer's software trigger runs on the GUI thread
c-keep-written~cache~orvcpp/genicam/RegisterCache.cpp~    // Also when it failed: the camera may have taken part of it.\n    invalidate(address, size);~    // Also when it failed: the camera may have taken part of it.~a register is kept across a write to it (a selector read back stale after its write)
c-selected~cache~orvcpp/genicam/GenICamFeature.cpp~                                                          ARV_GC_PROPERTY_NODE_TYPE_P_SELECTED)~                                                          ARV_GC_PROPERTY_NODE_TYPE_P_INVALIDATOR)~what a written selector selects (pSelected) is kept
c-invalidator~cache~orvcpp/genicam/GenICamFeature.cpp~            std::vector<ArvDomNode*> changed = m_device->invalidatedBy(written);~            std::vector<ArvDomNode*> changed;~what names the written feature as pInvalidator is kept
c-volatile~cache~orvcpp/genicam/GenICamFeature.cpp~m_device->cache().setReader(&m_name, m_uncached || m_type == OrvFeatureDataCommand, m_selector);~m_device->cache().setReader(&m_name, m_type == OrvFeatureDataCommand, m_selector);~a NoCache register is kept within a burst
c-burst-end~cache~orvcpp/genicam/RegisterCache.cpp~    if (!m_guiBurst || generation != m_generation)~    if (!m_guiBurst || generation == m_generation)~the GUI thread's burst does not end when its event loop runs
c-exclusive~cache~orvcpp/genicam/RegisterCache.cpp~    if (m_owner.load() != self)\n    {\n        m_released.wait(lock~    if (false)\n    {\n        m_released.wait(lock~the GUI thread's calls do not wait for another thread's bracket
c-elide~cache~orvcpp/genicam/RegisterCache.cpp~        if (kept != m_entries.end() && std::equal(kept->second.begin(), kept->second.end(), bytes))~        if (kept != m_entries.end())~a write of another value than the one kept is not sent either
c-elide-any~cache~orvcpp/genicam/RegisterCache.cpp~    if (m_keepWrites && cachesForThisThread())\n    {\n        std::unique_lock~    if (cachesForThisThread())\n    {\n        std::unique_lock~a write of the value a burst knows is left out for every register, not only a selector's
c-keep-any~cache~orvcpp/genicam/GenICamFeature.cpp~m_device->cache().setReader(&m_name, m_uncached || m_type == OrvFeatureDataCommand, m_selector);~m_device->cache().setReader(&m_name, m_uncached || m_type == OrvFeatureDataCommand, true);~every register keeps what was written to it, not only a selector's
m-entry-value~monitor~iomonitor/LineSampler.cpp~auto* values = dynamic_cast<OrvCPP::EnumEntryValues*>(selector.get());~OrvCPP::EnumEntryValues* values = nullptr;~a line's bit taken from its name or position, not from the value the camera's description gives its selector entry
m-vcd-unsampled~monitor~iomonitor/VcdWriter.cpp~it.value().at(i) == NotSampled ? SignalTrace::Unknown :~it.value().at(i) == NotSampled ? last.at(i) :~a trace not sampled at a time stamp keeps its last level in the dump, not x
m-vcd-unique~monitor~iomonitor/VcdWriter.cpp~for (int n = 2; taken.contains(tried); ++n)~for (int n = 2; false; ++n)~two rows whose names clean up alike get the same wire name
m-vcd-own-name~monitor~iomonitor/VcdWriter.cpp~        if (name == traces.at(i)->name().toLatin1() && !taken.contains(name))~        if (false)~a name that is an identifier already gives way to a cleaned one
m-vcd-last-stamp~monitor~iomonitor/IOMonitorWidget.cpp~m_lastSampleMs + 1,~m_lastSampleMs,~the saved dump ends at the last sample, which a reader then does not show
m-save-documents~monitor~iomonitor/IOMonitorWidget.cpp~        folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);~        folder = QDir::currentPath();~"Save..." proposes the working folder, not the documents folder
m-save-remember~monitor~iomonitor/IOMonitorWidget.cpp~    QSettings().setValue(SaveFolderKey, QFileInfo(path).absolutePath());~~"Save..." forgets the folder saved to last
m-sampler-gui~monitor~iomonitor/IOMonitorWidget.cpp~    QMetaObject::invokeMethod(m_sampler.get(), "sample", Qt::QueuedConnection, Q_ARG(qint64, now),\n                              Q_ARG(bool, states));~    m_sampler->sample(now, states);~a sample taken on the GUI thread, which then waits for a silent camera
m-no-answer~monitor~iomonitor/IOMonitorWidget.cpp~    markNotSampled(0, m_lineCount + m_stateCount - 1);\n    m_rows.back()~    m_rows.back()~a sample the camera does not answer leaves the last level shown, not a gap
m-no-answer-note~monitor~iomonitor/IOMonitorWidget.cpp~        m_noAnswer = true;~        m_noAnswer = false;~the page does not say that the camera does not answer
m-exclusive~monitor~iomonitor/MonitorSampler.cpp~if (!m_access || m_access->BeginExclusive(AccessSliceMs))~if (true)~a sample's selector walk not bracketed: it comes between the Trigger IO tab's calls
ts-trigger-off~setup~viewer/TriggerSetup.cpp~                apply("TriggerMode", "Off", where);~                original.clear();~a trigger's source is changed while the trigger is on
ts-line-order~setup~viewer/TriggerSetup.cpp~mode == "Output" ? QStringList{"LineRouting", "LineInverter"}~mode != "Output" ? QStringList{"LineRouting", "LineInverter"}~a line turned into an input gets its mode before its source, which the mode then locks
ts-capture-restore~setup~viewer/TriggerSetup.cpp~        selector->SetValue(saved.toStdString().c_str());~        ;~saving leaves each selector on its last entry
ts-apply-restore~setup~viewer/TriggerSetup.cpp~    applier.restore();~    ;~loading leaves the selectors where the file's last lines put them
ts-keep-late~setup~viewer/TriggerSetup.cpp~        if (m_kept.contains(selector))\n            return true;~        if (false)\n            return true;~loading puts a selector back where the step before left it, not where it was found
ts-missing~setup~viewer/TriggerSetup.cpp~            missing(name);\n            return false;~            return false;~a feature the camera lacks is skipped without a word
ts-skip-dependents~setup~viewer/TriggerSetup.cpp~        if (!step.selector.isEmpty() && !select(step))\n            return;~        if (!step.selector.isEmpty())\n            select(step);~the values under a selector entry the camera refuses are written under the entry selected before
ts-differs~setup~viewer/TriggerSetup.cpp~        if (wanted == now)~        if (false)~every value is written, also those the camera has already
ts-exclusive-end~setup~viewer/TriggerSetup.cpp~    if (access)\n        access->EndExclusive();~    if (!access)\n        access->EndExclusive();~a setup saved or loaded off the GUI thread keeps the camera from every other thread
ts-parse-selector~setup~viewer/TriggerSetup.cpp~        if (!selector.isEmpty() && !selectorsSeen.contains(selector))~        if (false)~a file whose selected value has no selector line before it is applied under whatever the camera selects
rig-add-replaces~rig~viewer/ViewerWindow.cpp~    m_pages->setCurrentWidget(session);\n    session->onCameraChosen(camera);~    m_pages->setCurrentWidget(session);\n    shown->onCameraChosen(camera);~a camera opened beside the others takes the place of the one shown
rig-choose-one~rig~viewer/CameraChooser.cpp~    for (const QString& id : selectedIds())\n        open(id);~    open(selectedId());~the chooser opens only the current row of the cameras selected
rig-one-features~rig~viewer/CameraSession.cpp~        const TabExtensionResult result = plugin->get(m_features, *page, nullptr);~        static const FeatureList firstFeatures = m_features;\n        const TabExtensionResult result = plugin->get(firstFeatures, *page, nullptr);~every camera's pages are built on the features of the first camera
rig-lost-stops-all~rig~viewer/CameraSession.cpp~    m_stream->stop(); // sends nothing to a lost camera~    for (CameraStream* stream : window()->findChildren<CameraStream*>())\n        stream->stop(); // sends nothing to a lost camera~a camera lost stops every camera's acquisition
rig-status-shown~rig~viewer/ViewerWindow.cpp~item->setText(StatusColumn, session->statusText());~item->setText(StatusColumn, shown->statusText());~every row of the camera list shows the status of the camera shown
rig-close-all~rig~viewer/ViewerWindow.cpp~    session->closeCamera();\n    if (m_sessions.size() == 1)~    for (CameraSession* each : qAsConst(m_sessions))\n        each->closeCamera();\n    if (m_sessions.size() == 1)~closing one camera closes every camera
LIST
)

[ -d "$build" ] || { echo "no build in $build: configure one first" >&2; exit 2; }
caught=0; missed=0; stale=0; equivalent=0
declare -A k_all k_caught k_missed

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

# The tests the filter picks, the fast ones first.
tests=$(cd "$build" && ctest -N -R "$filter" -E "$exclude" | sed -n 's/^ *Test *#[0-9]*: //p')
early=$(grep -E "$first" <<<"$tests" | paste -sd'|')
fast=$(grep -Ev "$first|$slow" <<<"$tests" | paste -sd'|')
rest=$(grep -E "$slow" <<<"$tests" | paste -sd'|')
# Builds and runs one round after the other; 2 when a build fails, 1 when a test
# fails. Only the test programs of a round are built (with what they need), all
# of the tree when a round has a test that is no program of its own.
run_tests() { # log file
    local group test targets
    for group in "$early" "$fast" "$rest"; do
        [ -n "$group" ] || continue
        targets=()
        for test in ${group//|/ }; do
            [[ $test == tst_* ]] && targets+=("$test") || { targets=(all); break; }
        done
        cmake --build "$build" -j"$jobs" --target "${targets[@]}" >/tmp/plant-build.log 2>&1 || return 2
        (cd "$build" && ctest -R "^($group)\$" -j"$jobs" --stop-on-failure --output-on-failure --timeout "$timeout") >>"$1" 2>&1 || return 1
    done
}

# The packages' faults (kind "package") run the tests that install the build or
# make its packages, whatever the filter; no other test looks at them.
run_package_tests() { # log file
    cmake --build "$build" -j"$jobs" >/tmp/plant-build.log 2>&1 || return 2
    (cd "$build" && ctest -R '^(viewer_install|debian_packages)$' -j"$jobs" --output-on-failure --timeout 300) >>"$1" 2>&1
}

while IFS='~' read -r id kind spot from to what; do
    [ -n "$id" ] || continue
    if [ "$only" != "  " ] && [[ "$only" != *" $id "* ]] && [[ "$only" != *" $kind "* ]]; then continue; fi
    file=${spot%%@*}
    anchor=""; [[ "$spot" == *@* ]] && anchor=${spot#*@}
    k_all[$kind]=$(( ${k_all[$kind]:-0} + 1 ))
    cp "$file" "$file.orig"
    planted=$file
    if ! FROM="$from" TO="$to" ANCHOR="$anchor" perl -0pi -e '
            BEGIN { ($f, $t) = ($ENV{FROM}, $ENV{TO}); s/\\n/\n/g for $f, $t; }
            my $start = 0;
            if (length $ENV{ANCHOR}) { $start = index($_, $ENV{ANCHOR}); $ok = $start >= 0; }
            else { my $n = () = /\Q$f\E/g; $ok = $n == 1; }
            my $at = $ok ? index($_, $f, $start) : -1;
            if ($at >= 0) { substr($_, $at, length $f) = $t; } else { $ok = 0; }
            END { exit($ok ? 0 : 1) }' "$file"; then
        mv "$file.orig" "$file"; planted=""
        echo "STALE   $id: its text is not once in $file"; stale=$((stale + 1)); continue
    fi
    : >"/tmp/plant-$id.log"
    result=0
    if [ -n "${PLANT_CHECK:-}" ]; then :
    elif [ "$kind" = package ]; then run_package_tests "/tmp/plant-$id.log"; result=$?
    else run_tests "/tmp/plant-$id.log"; result=$?; fi
    if [ -n "${PLANT_CHECK:-}" ]; then
        echo "PLANTS  $id"
    elif [ $result = 2 ]; then
        echo "BUILD   $id: does not compile (see /tmp/plant-build.log)"; stale=$((stale + 1))
    elif [ $result = 0 ] && [ "$kind" = equivalent ]; then
        echo "EQUIV   $id: $what"; equivalent=$((equivalent + 1))
    elif [ $result = 0 ]; then
        echo "MISSED  $id ($kind): $what"; missed=$((missed + 1)); k_missed[$kind]=$(( ${k_missed[$kind]:-0} + 1 ))
    else
        echo "CAUGHT  $id ($kind): $(grep -E '^\s*[0-9]+ - ' "/tmp/plant-$id.log" | awk '{print $3}' | tr '\n' ' ')"
        caught=$((caught + 1)); k_caught[$kind]=$(( ${k_caught[$kind]:-0} + 1 ))
    fi
    mv "$file.orig" "$file"
    touch "$file"
    planted=""
done <<<"$faults"
cmake --build "$build" -j"$jobs" >/dev/null 2>&1
echo
printf '%-12s %6s %7s %7s\n' kind faults caught missed
for kind in dispatch preset-step literal size alt-order restore row-limit other poller device finder viewer graph monitor package chooser gui-thread cache setup rig equivalent; do
    [ -n "${k_all[$kind]:-}" ] || continue
    printf '%-12s %6d %7d %7d\n' "$kind" "${k_all[$kind]}" "${k_caught[$kind]:-0}" "${k_missed[$kind]:-0}"
done
echo "$caught caught, $missed missed, $equivalent equivalent (no test can tell), $stale stale"
