#pragma once

#include <string_view>

namespace opc::inspection {

/// Everything in front of the first file. The policy lets a browser load nothing and run nothing.
constexpr std::string_view HTML_HEAD = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Report on packages</title>
<style>
:root { --ink: #1f2933; --soft: #5b6776; --line: #dde3ea; --page: #f5f7fa; --link: #1d5fa8; }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 72rem; padding: 1.5rem; display: flex; flex-direction: column; gap: 1rem;
  background: var(--page); color: var(--ink); font: 15px/1.5 system-ui, sans-serif; overflow-wrap: anywhere; }
header { order: -1; }
header, .file, .rules { background: #fff; border: 1px solid var(--line); border-radius: 8px; padding: 1.2rem 1.5rem; }
h1 { margin: 0; font-size: 1.5rem; }
h2 { margin: 0; font-size: 1.1rem; }
h3 { margin: 1.4rem 0 0; font-size: 1rem; }
header h2 { margin-top: 1.2rem; }
p { margin: .4rem 0; }
a { color: var(--link); text-decoration: none; white-space: nowrap; }
a:hover { text-decoration: underline; }
summary { cursor: pointer; }
summary h2 { display: inline; margin-right: .3rem; }
.format, .statement, dt, em { color: var(--soft); }
.format { margin-right: .3rem; }
em { font-style: normal; display: block; }
.badge { display: inline-block; padding: 0 .55rem; border-radius: 1rem; font-size: .85rem; background: #edf0f4;
  white-space: nowrap; }
.badge.error { background: #fde3e1; color: #8f1d14; }
.badge.warning { background: #fdf0d0; color: #7a4f00; }
.badge.info { background: #e1effc; color: #1a4b80; }
.badge.fine { background: #e0f3e4; color: #1d5c2e; }
table { width: 100%; margin-top: .8rem; border-collapse: collapse; }
th { font-weight: 600; color: var(--soft); text-align: left; white-space: nowrap; }
th, td { padding: .3rem .6rem .3rem 0; border-bottom: 1px solid var(--line); vertical-align: top; }
th.number, td.number { text-align: right; padding-right: 0; padding-left: .6rem; }
ul { list-style: none; margin: .4rem 0; padding: 0; }
li { display: flex; flex-wrap: wrap; gap: 0 .8rem; padding: .25rem 0 .25rem .7rem; border-left: 3px solid var(--line);
  margin: .25rem 0; }
li.error { border-color: #d9483b; }
li.warning { border-color: #e0a526; }
li.info { border-color: #4a90d9; }
li span { flex: 1 1 18rem; }
code { font: 13px/1.6 ui-monospace, monospace; color: #33475b; max-width: 100%; }
dl { display: grid; grid-template-columns: 9rem 1fr; gap: .2rem 1rem; margin: .4rem 0; }
dd { margin: 0; }
.rule:target { background: #fffbe6; }
.picture { margin-top: 1.2rem; }
.picture > summary { font-weight: 600; }
.picture div { overflow-x: auto; margin-top: .6rem; }
svg { display: block; }
svg text { font: 12px system-ui, sans-serif; fill: var(--ink); }
@media (max-width: 40rem) {
  body { padding: .5rem; }
  header, .file, .rules { padding: .8rem; }
  dl { grid-template-columns: 1fr; }
  dd { margin-bottom: .4rem; }
}
@media print { body { background: #fff; max-width: none; } }
</style>
</head>
<body>
)";

} // namespace opc::inspection
