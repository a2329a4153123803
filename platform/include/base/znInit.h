#pragma once

// The tag types that name the host's packages. A package depends on another
// through InInit<tag>::getType().
namespace ZnInit {
struct base {};
struct resmgt {};
struct pluginAPI {};
struct gfx {};
struct ui {};
struct appUi {};
struct internalAPI {};
struct primitives {};
struct tesseraUtil {};
struct tesseraZntool {};
struct tesseraUiZnmodule {};
} // namespace ZnInit
