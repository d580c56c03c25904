#include "Applications/Preferences/FontReader.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QStringList>

#include <fontconfig/fontconfig.h>

FontReader::FontReader() : mConfiguration([] { FcInit(); }) {}

FontReader::~FontReader()
{
    if (mConfiguration.joinable())
        mConfiguration.join();
}

std::jthread FontReader::listFonts()
{
    return std::jthread([this] {
        // The library reads its configuration twice for two who ask for it at once.
        mConfiguration.join();
        QFontDatabase::families();
        // The first text finds the font's file, and which fonts stand in for what it lacks.
        QFontMetricsF(QFont()).horizontalAdvance(u'x');
    });
}
