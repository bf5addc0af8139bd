<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>IOTriggerWidget</name>
    <message>
        <source>Form</source>
        <translation>Formular</translation>
    </message>
    <message>
        <source>Output</source>
        <translation>Ausgang</translation>
    </message>
    <message>
        <source>Selectable Output</source>
        <translation>Umschaltbarer Ausgang</translation>
    </message>
    <message>
        <source>Trigger - Input</source>
        <translation>Trigger - Eingang</translation>
    </message>
    <message>
        <source>Full Input configuration only if camera is not acquiring!</source>
        <translation>Vollständige Eingangskonfiguration nur, wenn die Kamera nicht aufnimmt!</translation>
    </message>
    <message>
        <source>Trigger IO</source>
        <translation>Trigger E/A</translation>
    </message>
    <message>
        <source>Polarity:</source>
        <translation>Polarität:</translation>
    </message>
    <message>
        <source>Invert:</source>
        <translation>Invert.:</translation>
    </message>
    <message>
        <source>Status:</source>
        <translation>Status:</translation>
    </message>
    <message>
        <source>UserOutSel.:</source>
        <translation>Benutzerausg.:</translation>
    </message>
    <message>
        <source>User Value:</source>
        <translation>Benutzerwert:</translation>
    </message>
    <message>
        <source>LineOutLevels</source>
        <translation>Ausgangspegel</translation>
    </message>
    <message>
        <source>SyncLevels:</source>
        <translation>Sync-Pegel:</translation>
    </message>
    <message>
        <source>LineOutSource:</source>
        <translation>Ausgangsquelle:</translation>
    </message>
    <message>
        <source>SyncOutSource:</source>
        <translation>Sync-Quelle:</translation>
    </message>
    <message>
        <source>LineSource:</source>
        <translation>Leitungsquelle:</translation>
    </message>
    <message>
        <source>Source:</source>
        <translation>Quelle:</translation>
    </message>
    <message>
        <source>Activ.:</source>
        <translation>Aktiv.:</translation>
    </message>
    <message>
        <source>Selector:</source>
        <translation>Auswahl:</translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation>Modus:</translation>
    </message>
    <message>
        <source>FrameCount:</source>
        <translation>Bildanzahl:</translation>
    </message>
    <message>
        <source>SW Trigger</source>
        <translation>SW-Trigger</translation>
    </message>
    <message>
        <source>Edge</source>
        <translation>Flanke</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Pegel</translation>
    </message>
    <message>
        <source>Bulk</source>
        <translation>Serie</translation>
    </message>
    <message>
        <source>Line Sel.:</source>
        <translation>Leitung:</translation>
    </message>
    <message>
        <source>Rout.:</source>
        <translation>Rout.:</translation>
    </message>
    <message>
        <source>Trigger</source>
        <translation>Trigger</translation>
    </message>
    <message>
        <source>Acquisition</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>Quick Settings: Trigger Mode</source>
        <translation>Schnelleinstellung: Triggermodus</translation>
    </message>
</context>
</TS>
