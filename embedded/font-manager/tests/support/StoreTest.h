// A database of fonts in memory, without an agent.
#pragma once

#include <gmock/gmock.h>

#include "common/FontManagerLimits.h"
#include "common/Protocol.h"
#include "store/ActivationStore.h"
#include "store/Database.h"
#include "store/FontStore.h"
#include "store/Schema.h"
#include "store/SetStore.h"
#include "store/SmartListStore.h"
#include "store/WorkgroupStore.h"

namespace pellwick {

class StoreTest : public testing::Test {
protected:
    StoreTest() { PrepareSchema(mDatabase); }

    uint32_t Add(const std::string& postScriptName, const std::string& family, const std::string& style,
                 const std::string& version = "Version 1.0", int32_t kind = 4) {
        FontFace face;
        face.postScriptName = postScriptName;
        face.family = family;
        face.style = style;
        face.fullName = family + " " + style;
        face.version = version;
        face.kind = kind;
        face.lookupNames = {family + style, face.fullName};
        const std::string checksum = "checksum" + std::to_string(++mFiles);
        return mFonts.FontsOfFile(mFonts.Add({0, checksum, "font.ttf", ".ttf", 10}, {face})).front().id;
    }
    void SetMissing(uint32_t font) { mFonts.SetFileMissing(mFonts.Find(font)->file.id, true); }

    Database mDatabase{":memory:"};
    FontStore mFonts{mDatabase};
    ActivationStore mActivations{mDatabase};
    int mFiles = 0;
};

}  // namespace pellwick
