#include "Applications/Preferences/FontReader.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QStringList>

#include <fontconfig/fontconfig.h>

// Whoever initializes it while this goes on gets the same configuration.
FontReader::FontReader() : mConfiguration([] { FcInit(); }) {}

FontReader::~FontReader() { mConfiguration.join(); }

std::jthread FontReader::listFonts()
{
    return std::jthread([] {
        QFontDatabase::families();
        // The first text finds the font's file, and which fonts stand in for what it lacks.
        QFontMetricsF(QFont()).horizontalAdvance(u'x');
    });
}
