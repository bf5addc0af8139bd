<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>CameraChooser</name>
    <message>
        <source>Choose a camera: double click it, or select it and press Open.</source>
        <translation>Wählen Sie eine Kamera: Doppelklick, oder auswählen und „Öffnen“ drücken.</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Serial number</source>
        <translation>Seriennummer</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Adresse</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>Back to the camera</source>
        <translation>Zurück zur Kamera</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Looking for cameras...</source>
        <translation>Suche nach Kameras...</translation>
    </message>
    <message>
        <source>Opening...</source>
        <translation>Wird geöffnet...</translation>
    </message>
    <message>
        <source>Open in this window</source>
        <translation>In diesem Fenster geöffnet</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>Frei</translation>
    </message>
    <message>
        <source>Controlled by another application</source>
        <translation>Von einer anderen Anwendung gesteuert</translation>
    </message>
    <message>
        <source>Not known whether in use</source>
        <translation>Belegung unbekannt</translation>
    </message>
    <message>
        <source>Demo: %1</source>
        <translation>Demo: %1</translation>
    </message>
</context>
<context>
    <name>CameraSession</name>
    <message>
        <source>Acquire</source>
        <translation>Aufnehmen</translation>
    </message>
    <message>
        <source>No image</source>
        <translation>Kein Bild</translation>
    </message>
    <message>
        <source>Frames: %1</source>
        <translation>Bilder: %1</translation>
    </message>
    <message>
        <source>%1 offers no tab for this camera (result %2)</source>
        <translation>%1 bietet keinen Tab für diese Kamera (Ergebnis %2)</translation>
    </message>
    <message>
        <source>Camera %1 open</source>
        <translation>Kamera %1 geöffnet</translation>
    </message>
    <message>
        <source>Software trigger sent</source>
        <translation>Software-Trigger gesendet</translation>
    </message>
    <message>
        <source>Software trigger failed (error %1)</source>
        <translation>Software-Trigger fehlgeschlagen (Fehler %1)</translation>
    </message>
    <message>
        <source>The camera has no software trigger</source>
        <translation>Die Kamera hat keinen Software-Trigger</translation>
    </message>
    <message>
        <source>Acquisition not started: %1</source>
        <translation>Aufnahme nicht gestartet: %1</translation>
    </message>
    <message>
        <source>Acquiring</source>
        <translation>Aufnahme läuft</translation>
    </message>
    <message>
        <source>Stopped after %1 frames</source>
        <translation>Angehalten nach %1 Bildern</translation>
    </message>
    <message>
        <source>No camera</source>
        <translation>Keine Kamera</translation>
    </message>
    <message>
        <source>Camera %1 lost</source>
        <translation>Kamera %1 verloren</translation>
    </message>
    <message>
        <source>Camera %1 lost (%2)</source>
        <translation>Kamera %1 verloren (%2)</translation>
    </message>
    <message>
        <source>Camera %1 answers again: the pages are built anew once the dialog or menu is closed</source>
        <translation>Kamera %1 antwortet wieder: die Seiten werden neu aufgebaut, sobald der Dialog oder das Menü geschlossen ist</translation>
    </message>
    <message>
        <source>Starting the acquisition</source>
        <translation>Aufnahme wird gestartet</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Offen</translation>
    </message>
    <message>
        <source>Lost</source>
        <translation>Verloren</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Wieder da</translation>
    </message>
    <message>
        <source>Closed</source>
        <translation>Geschlossen</translation>
    </message>
    <message>
        <source>Demo: %1</source>
        <translation>Demo: %1</translation>
    </message>
</context>
<context>
    <name>PluginHost</name>
    <message>
        <source>Plug-in folder %1 does not exist</source>
        <translation>Plug-in-Ordner %1 existiert nicht</translation>
    </message>
    <message>
        <source>%1 is not a tab plug-in</source>
        <translation>%1 ist kein Tab-Plug-in</translation>
    </message>
    <message>
        <source>%1 has interface %2, not TabExtensionInterface</source>
        <translation>%1 hat die Schnittstelle %2, nicht TabExtensionInterface</translation>
    </message>
    <message>
        <source>%1 could not be loaded: %2</source>
        <translation>%1 konnte nicht geladen werden: %2</translation>
    </message>
    <message>
        <source>No tab plug-in in %1</source>
        <translation>Kein Tab-Plug-in in %1</translation>
    </message>
</context>
<context>
    <name>TriggerSetupActions</name>
    <message>
        <source>Save trigger setup...</source>
        <translation>Trigger-Einstellungen speichern...</translation>
    </message>
    <message>
        <source>Load trigger setup...</source>
        <translation>Trigger-Einstellungen laden...</translation>
    </message>
    <message>
        <source>No camera is open.</source>
        <translation>Keine Kamera ist geöffnet.</translation>
    </message>
    <message>
        <source>The camera has none of the trigger setup&apos;s features.</source>
        <translation>Die Kamera hat keines der Features der Trigger-Einstellungen.</translation>
    </message>
    <message>
        <source>Cannot write %1: %2</source>
        <translation>%1 kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>Cannot read %1: %2</source>
        <translation>%1 kann nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>%1 is too large for a trigger setup.</source>
        <translation>%1 ist zu groß für Trigger-Einstellungen.</translation>
    </message>
    <message>
        <source>%1 is not a trigger setup (nothing was written): %2</source>
        <translation>%1 enthält keine Trigger-Einstellungen (nichts wurde geschrieben): %2</translation>
    </message>
    <message>
        <source>Save trigger setup</source>
        <translation>Trigger-Einstellungen speichern</translation>
    </message>
    <message>
        <source>Trigger setups (*.txt);;All files (*)</source>
        <translation>Trigger-Einstellungen (*.txt);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Load trigger setup</source>
        <translation>Trigger-Einstellungen laden</translation>
    </message>
    <message>
        <source>Load trigger setup onto every camera...</source>
        <translation>Trigger-Einstellungen in jede Kamera laden...</translation>
    </message>
</context>
<context>
    <name>ViewerWindow</name>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Serial number</source>
        <translation>Seriennummer</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Close camera</source>
        <translation>Kamera schließen</translation>
    </message>
    <message>
        <source>Add camera...</source>
        <translation>Kamera hinzufügen...</translation>
    </message>
    <message>
        <source>&amp;Camera</source>
        <translation>&amp;Kamera</translation>
    </message>
    <message>
        <source>&amp;Open...</source>
        <translation>Ö&amp;ffnen...</translation>
    </message>
    <message>
        <source>&amp;Add...</source>
        <translation>&amp;Hinzufügen...</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Trigger IO viewer - %1</source>
        <translation>Trigger-IO-Viewer - %1</translation>
    </message>
    <message>
        <source>Trigger IO viewer</source>
        <translation>Trigger-IO-Viewer</translation>
    </message>
    <message>
        <source>No tab for this camera</source>
        <translation>Kein Tab für diese Kamera</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Hosts the Trigger IO tab for a camera.</source>
        <translation>Zeigt den Trigger-IO-Tab für eine Kamera.</translation>
    </message>
    <message>
        <source>Aravis device id, or fake:FILE.xml for a GenICam model (may be repeated).</source>
        <translation>Aravis-Gerätekennung, oder fake:DATEI.xml für ein GenICam-Modell (auch mehrmals).</translation>
    </message>
    <message>
        <source>List the cameras that can be opened.</source>
        <translation>Listet die Kameras, die sich öffnen lassen.</translation>
    </message>
    <message>
        <source>Start the acquisition when the window opens.</source>
        <translation>Startet die Aufnahme, sobald das Fenster offen ist.</translation>
    </message>
    <message>
        <source>Run the camera&apos;s software trigger once the acquisition has started.</source>
        <translation>Löst den Software-Trigger der Kamera aus, sobald die Aufnahme läuft.</translation>
    </message>
    <message>
        <source>Render the window to a PNG file and exit (while acquiring: once a frame is shown).</source>
        <translation>Speichert das Fenster als PNG-Datei und beendet sich (während einer Aufnahme: sobald ein Bild zu sehen ist).</translation>
    </message>
    <message>
        <source>Milliseconds before the screenshot (default 1500).</source>
        <translation>Millisekunden bis zum Bildschirmfoto (Vorgabe 1500).</translation>
    </message>
    <message>
        <source>--help, --version and --list take no other options</source>
        <translation>--help, --version und --list nehmen keine weiteren Optionen</translation>
    </message>
    <message>
        <source>cannot open camera %1: %2</source>
        <translation>Kamera %1 lässt sich nicht öffnen: %2</translation>
    </message>
    <message>
        <source>no tab for this camera: %1</source>
        <translation>kein Tab für diese Kamera: %1</translation>
    </message>
    <message>
        <source>no frame arrived</source>
        <translation>kein Bild angekommen</translation>
    </message>
    <message>
        <source>Screenshot written to %1</source>
        <translation>Bildschirmfoto geschrieben nach %1</translation>
    </message>
    <message>
        <source>cannot write %1</source>
        <translation>%1 lässt sich nicht schreiben</translation>
    </message>
    <message>
        <source>Show the page with this title first (&quot;I/O Monitor&quot;).</source>
        <translation>Zuerst die Seite mit diesem Titel zeigen (&quot;E/A-Monitor&quot;).</translation>
    </message>
    <message>
        <source>no tab for this camera</source>
        <translation>kein Tab für diese Kamera</translation>
    </message>
    <message>
        <source>no page %1</source>
        <translation>keine Seite %1</translation>
    </message>
    <message>
        <source>Start the acquisition MS milliseconds after the window opens.</source>
        <translation>Die Aufnahme MS Millisekunden nach dem Öffnen des Fensters starten.</translation>
    </message>
    <message>
        <source>not waiting for a lost camera&apos;s calls to time out</source>
        <translation>warte nicht, bis die Aufrufe an eine verlorene Kamera ablaufen</translation>
    </message>
    <message>
        <source>--%1 takes a number of milliseconds, not &quot;%2&quot;</source>
        <translation>--%1 erwartet eine Anzahl Millisekunden, nicht „%2“</translation>
    </message>
</context>
</TS>
