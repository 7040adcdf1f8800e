#pragma once

#include <QString>

/// What the areas for dropping material say.
namespace ImportTexts {

using namespace Qt::StringLiterals;

inline const QString title = u"＋  拖入素材，或点击导入"_s;
inline const QString detail = u"SRT · 音视频 · FCP 项目"_s;
inline const QString help = u"导入素材：拖入或点击选择 SRT、音视频或 FCP 项目"_s;
inline const QString description = u"拖入 SRT、音视频或 FCP 浏览器中的项目；点击此框也可选择文件。"_s;
inline const QString dropPrompt = u"拖入 FCP 项目、SRT 或音视频"_s;
inline const QString dropLabel = u"将 SRT 或音视频拖到这里"_s;
inline const QString hovering = u"松开以导入"_s; ///< While material is held over an area.

} // namespace ImportTexts
