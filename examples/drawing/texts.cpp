#include "texts.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

struct Entry {
    const char *english;
    const char *german;
};

constexpr Entry german[] = {
    {"error", "Fehler"},
    {"warning", "Warnung"},
    {"layer", "Layer"},
    {"kind", "Art"},
    {"Layers: colour, length of the curves", "Layer: Farbe, Länge der Kurven"},
    {"all layers", "alle Layer"},
    {"Extents: lower left and upper right corner; grid boxes left, top, right, bottom with y downwards",
     "Ausdehnung: Ecke links unten und rechts oben; im Raster links, oben, rechts, unten, y abwärts"},
    {"exact", "exakt"},
    {"sampled", "abgetastet"},
    {"on the grid", "im Raster"},
    {"whole", "ganz"},
    {"measuring", "Messen"},
    {"Only counted:", "Nur gezählt:"},
    {"Blocks: %d with %d entities", "Blöcke: %d mit %d Elementen"},
    {"Memory: %ld allocations, %ld heap blocks of %ld bytes now, large blocks %ld bytes now and %ld at most",
     "Speicher: %ld Anforderungen, jetzt %ld Heapblöcke mit %ld Bytes, große Blöcke jetzt %ld Bytes, höchstens %ld"},
    {"standard input", "Standardeingabe"},
    {"standard output", "Standardausgabe"},
    {"the command line", "die Kommandozeile"},
    {"is a directory", "ist ein Verzeichnis"},
    {"the report can't be written", "der Bericht ist nicht schreibbar"},
    {"can't be written", "ist nicht schreibbar"},
    {"is larger than %d MB", "ist größer als %d MB"},
    {"is empty", "ist leer"},
    {"is a binary DXF drawing; save it as a text DXF", "ist eine binäre DXF-Zeichnung; bitte als Text-DXF speichern"},
    {"is not a DXF drawing", "ist keine DXF-Zeichnung"},
    {"has no section", "hat keinen Abschnitt"},
    {"ends early: no EOF behind line %d", "endet zu früh: kein EOF hinter Zeile %d"},
    {"line %d: \"%s\" is out of range", "Zeile %d: \"%s\" liegt außerhalb des Zahlenbereichs"},
    {"line %d: \"%s\" is not a number", "Zeile %d: \"%s\" ist keine Zahl"},
    {"line %d: \"%s\" is not a finite number", "Zeile %d: \"%s\" ist keine endliche Zahl"},
    {"line %d: \"%s\" is not a group code", "Zeile %d: \"%s\" ist kein Gruppencode"},
    {"line %d: \"%s\" is no count of what the file holds", "Zeile %d: \"%s\" zählt mehr, als die Datei enthält"},
    {"is too large for the memory", "ist zu groß für den Speicher"},
    {"inserts blocks more than %d deep", "fügt Blöcke mehr als %d Ebenen tief ein"},
    {"block \"%s\" inserts itself", "Block \"%s\" fügt sich selbst ein"},
    {"Reading %s", "%s wird gelesen"},
    {"reading", "Lesen"},
    {"sorting", "Sortieren"},
    {"placing", "Platzieren"},
    {"places more than %d entities", "platziert mehr als %d Elemente"},
    {"%s is left out: %s", "%s entfällt: %s"},
    {"its radius is not positive", "der Radius ist nicht positiv"},
    {"its angle is beyond 1e6", "der Winkel liegt über 1e6"},
    {"it lies too far out", "es liegt zu weit draußen"},
    {"block \"%s\" is not there", "Block \"%s\" fehlt"},
    {"crossings of %s and %s may be missing: the iteration does not settle",
     "Schnittpunkte von %s und %s fehlen vielleicht: die Iteration endet nicht"},
    {"feet on %s may be missing: the iteration does not settle",
     "Lotfußpunkte auf %s fehlen vielleicht: die Iteration endet nicht"},
    {"too much lies on one another: the search ended after %d crossings",
     "zu viel liegt aufeinander: die Suche wurde nach %d Schnittpunkten beendet"},
    {"%s keeps its corner at %s: its sides are too short", "%s behält die Ecke bei %s: die Seiten sind zu kurz"},
    {"crossing", "Schneiden"},
    {"blending", "Abrunden"},
    {"looking for the nearest", "Suchen des Nächsten"},
    {"Crossings: %d", "Schnittpunkte: %d"},
    {"Corners: %d blended", "Ecken: %d abgerundet"},
    {"Corners: %d cut", "Ecken: %d gefast"},
    {"Nearest feet of perpendiculars from (%s)", "Nächste Lotfußpunkte von (%s)"},
    {"distance", "Abstand"},
    {"and %d more", "und %d weitere"},
    {"stopped on request while %s, %d elements done", "auf Wunsch abgebrochen beim %s, %d Elemente fertig"},
    {"%d more warnings like these", "%d weitere solche Warnungen"},
    {"%ld s, %ld KB", "%ld s, %ld KB"},
    {"%d entities read", "%d Elemente gelesen"},
    // The command line.
    {"%s (--help tells more)", "%s (mehr dazu: --help)"},
    {"%s: \"%s\" is not %s", "%s: \"%s\" ist nicht %s"},
    {"an angle of up to 1e6 radians", "ein Winkel bis 1e6 Radiant"},
    {"a scale that leaves anything to see", "ein Maßstab, bei dem etwas zu sehen bleibt"},
    {"translate=X,Y, rotate=DEGREES or scale=X[,Y] with finite numbers",
     "translate=X,Y, rotate=GRAD oder scale=X[,Y] mit endlichen Zahlen"},
    {"a number above 0", "eine Zahl über 0"},
    {"a whole number from 1 to 1000000", "eine ganze Zahl von 1 bis 1000000"},
    {"a place of up to 1e15", "ein Ort bis 1e15"},
    {"X,Y with finite numbers", "X,Y mit endlichen Zahlen"},
    {"en or de", "en oder de"},
    {"%s and %s exclude each other", "%s und %s schließen einander aus"},
    {"%s: is the drawing itself", "%s: ist die Zeichnung selbst"},
    {"%s: can't hold two results", "%s: kann nicht zwei Ergebnisse aufnehmen"},
    {"which drawing? FILE is missing", "welche Zeichnung? FILE fehlt"},
    {"%s: needs one value", "%s: braucht einen Wert"},
    {"%s: takes no value", "%s: nimmt keinen Wert"},
    {"%s: no such option", "%s: diese Option gibt es nicht"},
    {"%s: one drawing at a time", "%s: nur eine Zeichnung auf einmal"},
    {"Reads a DXF drawing, reports on it and draws it.",
     "Liest eine DXF-Zeichnung, berichtet über sie und zeichnet sie."},
    {"Usage", "Aufruf"},
    {"OPTIONS", "OPTIONEN"},
    {"Positionals", "Eingabe"},
    {"REQUIRED", "(nötig)"},
    {"Results", "Ergebnisse"},
    {"Work", "Arbeit"},
    {"Messages", "Meldungen"},
    {"DXF drawing, text form; \"-\" is standard input", "DXF-Zeichnung in Textform; \"-\" ist die Standardeingabe"},
    {"Draws the picture into this file; \"-\" is standard output, here and below",
     "Zeichnet das Bild in diese Datei; \"-\" ist die Standardausgabe, auch im Folgenden"},
    {"Writes the picture as a drawing without blocks", "Schreibt das Bild als Zeichnung ohne Blöcke"},
    {"Writes the report for programs", "Schreibt den Bericht für Programme"},
    {"Writes the crossings as a table", "Schreibt die Schnittpunkte als Tabelle"},
    {"Writes the report here and not to standard output", "Schreibt den Bericht hierhin statt auf die Standardausgabe"},
    {"translate=X,Y, rotate=DEGREES or scale=X[,Y]; of several: scaled, turned, then moved",
     "translate=X,Y, rotate=GRAD oder scale=X[,Y]; mehrere: skaliert, gedreht, dann verschoben"},
    {"Blends corners of lines by arcs of this radius", "Rundet Ecken von Linien mit diesem Radius ab"},
    {"Cuts corners of lines at this distance; not with --fillet",
     "Fast Ecken von Linien in diesem Abstand; nicht mit --fillet"},
    {"Finds the nearest foot of a perpendicular on every curve", "Sucht auf jeder Kurve den nächsten Lotfußpunkt"},
    {"The most passes of an iteration for crossings and feet; otherwise 1000",
     "Höchstzahl der Durchläufe einer Iteration für Schnitt- und Lotfußpunkte; sonst 1000"},
    {"Language of messages and report; otherwise that of LANG",
     "Sprache von Meldungen und Bericht; sonst die von LANG"},
    {"No messages but errors", "Keine Meldungen außer Fehlern"},
    {"More messages", "Mehr Meldungen"},
    {"Shows this and ends", "Zeigt dies und endet"},
    {"Shows the version and ends", "Zeigt die Version und endet"},
    {"Exit status: 0 done, 1 wrong use, 2 unreadable drawing, 3 unwritable result, 130 stopped by Ctrl-C",
     "Endestatus: 0 fertig, 1 falscher Aufruf, 2 unlesbare Zeichnung, 3 unschreibbares Ergebnis, 130 Abbruch mit "
     "Strg-C"},
};

} // namespace

Language chooseLanguage(const std::string &choice)
{
    std::string wanted = choice;
    for (const char *name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char *value = std::getenv(name); value && wanted.empty())
            wanted = value;
    return wanted.compare(0, 2, "de") == 0 ? Language::German : Language::English;
}

const char *translated(Language language, const char *english)
{
    if (language == Language::German)
        for (const Entry &entry : german)
            if (std::strcmp(entry.english, english) == 0)
                return entry.german;
    return english;
}

const char *bytesOf(const karString &text)
{
    const char *bytes = text;
    return bytes ? bytes : throw std::bad_alloc();
}

karString text(const char *english)
{
    karString found(english); // stays where no console is installed
    karString result = LocalizeString("kartory-drawing", english, found, 0);
    bytesOf(result);
    return result;
}

karString textOf(const char *english, ...)
{
    const karString format = text(english);
    va_list arguments;
    va_start(arguments, english);
    const std::string result = expanded(format, arguments);
    va_end(arguments);
    karString whole(result.c_str());
    bytesOf(whole);
    return whole;
}

std::string expanded(const char *format, va_list arguments)
{
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    std::string result(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (!result.empty())
        std::vsnprintf(result.data(), result.size() + 1, format, again);
    va_end(again);
    return result;
}
