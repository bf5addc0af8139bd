<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>IOMonitorWidget</name>
    <message>
        <source>Samples per second:</source>
        <translation>Abtastungen pro Sekunde:</translation>
    </message>
    <message>
        <source>Seconds shown:</source>
        <translation>Angezeigte Sekunden:</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Reset counts</source>
        <translation>Zähler zurücksetzen</translation>
    </message>
    <message>
        <source>Save...</source>
        <translation>Speichern...</translation>
    </message>
    <message>
        <source>I/O Monitor</source>
        <translation>E/A-Monitor</translation>
    </message>
    <message>
        <source>Camera state</source>
        <translation>Kamerazustand</translation>
    </message>
    <message>
        <source>Viewer</source>
        <translation>Viewer</translation>
    </message>
    <message>
        <source>Rising and falling edges seen since the last reset</source>
        <translation>Steigende und fallende Flanken seit dem letzten Zurücksetzen</translation>
    </message>
    <message>
        <source>Output</source>
        <translation>Ausgang</translation>
    </message>
    <message>
        <source>Input</source>
        <translation>Eingang</translation>
    </message>
    <message>
        <source>Line levels from LineStatusAll, one read a sample.</source>
        <translation>Pegel aus LineStatusAll, ein Lesezugriff je Abtastung.</translation>
    </message>
    <message>
        <source>Line levels from LineStatus, read line by line.</source>
        <translation>Pegel aus LineStatus, Leitung für Leitung gelesen.</translation>
    </message>
    <message>
        <source>Line levels from the camera&apos;s level masks.</source>
        <translation>Pegel aus den Pegelmasken der Kamera.</translation>
    </message>
    <message>
        <source>The camera does not report line levels.</source>
        <translation>Die Kamera meldet keine Pegel.</translation>
    </message>
    <message>
        <source>No answer from the camera: the traces have a gap. </source>
        <translation>Keine Antwort von der Kamera: die Verläufe haben eine Lücke. </translation>
    </message>
    <message>
        <source>%1 samples a second: pulses shorter than %2 ms can be missed. %3 Nothing is read while this page is hidden or paused.</source>
        <translation>%1 Abtastungen pro Sekunde: Pulse kürzer als %2 ms können fehlen. %3 Solange diese Seite verborgen oder angehalten ist, wird nichts gelesen.</translation>
    </message>
    <message>
        <source>Save traces</source>
        <translation>Verläufe speichern</translation>
    </message>
    <message>
        <source>Value Change Dump (*.vcd)</source>
        <translation>Value Change Dump (*.vcd)</translation>
    </message>
    <message>
        <source>Could not write %1: %2</source>
        <translation>%1 konnte nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>Acquisition states</source>
        <translation>Aufnahmezustände</translation>
    </message>
    <message>
        <source>Also read the camera&apos;s acquisition states at every sample (more reads a sample)</source>
        <translation>Bei jeder Abtastung auch die Aufnahmezustände der Kamera lesen (mehr Lesezugriffe je Abtastung)</translation>
    </message>
</context>
<context>
    <name>TriggerMonitor</name>
    <message>
        <source>Frame start</source>
        <translation>Bildstart</translation>
    </message>
    <message>
        <source>Acquisition start</source>
        <translation>Aufnahmestart</translation>
    </message>
    <message>
        <source>Exposure start</source>
        <translation>Belichtungsstart</translation>
    </message>
    <message>
        <source>Frame burst start</source>
        <translation>Bildserienstart</translation>
    </message>
    <message>
        <source>The trigger</source>
        <translation>Der Trigger</translation>
    </message>
    <message>
        <source>Free running (the camera has no trigger)</source>
        <translation>Freilaufend (die Kamera hat keinen Trigger)</translation>
    </message>
    <message>
        <source>Free running</source>
        <translation>Freilaufend</translation>
    </message>
    <message>
        <source>%1 trigger off</source>
        <translation>%1-Trigger aus</translation>
    </message>
    <message>
        <source>%1 waits for a software trigger</source>
        <translation>%1 wartet auf einen Software-Trigger</translation>
    </message>
    <message>
        <source>a signal</source>
        <translation>ein Signal</translation>
    </message>
    <message>
        <source>a rising edge</source>
        <translation>eine steigende Flanke</translation>
    </message>
    <message>
        <source>a falling edge</source>
        <translation>eine fallende Flanke</translation>
    </message>
    <message>
        <source>any edge</source>
        <translation>eine beliebige Flanke</translation>
    </message>
    <message>
        <source>a high level</source>
        <translation>einen hohen Pegel</translation>
    </message>
    <message>
        <source>a low level</source>
        <translation>einen niedrigen Pegel</translation>
    </message>
    <message>
        <source>%1 waits for %2</source>
        <translation>%1 wartet auf %2</translation>
    </message>
    <message>
        <source>%1 waits for %2 on %3</source>
        <translation>%1 wartet auf %2 an %3</translation>
    </message>
</context>
</TS>
