"""Turns a Markdown page into one HTML file that needs nothing else: no network, no other file.

    html_page.py PAGE.md EDITION > PAGE.html

EDITION is shown below the title.
"""
import html
import itertools
import re
import sys

import markdown

# For the oldest browser on a server (no variables, no grid) and for paper.
STYLE = """
body { font: 16px/1.5 "Segoe UI", "DejaVu Sans", Arial, sans-serif; color: #1b1b1b; background: #fff;
       max-width: 62em; margin: 0 auto; padding: 1em 1.5em 3em; }
h1, h2, h3 { line-height: 1.25; margin: 1.6em 0 .5em; }
h1 { font-size: 2em; margin-top: .5em; }
h2 { font-size: 1.5em; border-bottom: 1px solid #c8c8c8; padding-bottom: .2em; }
h3 { font-size: 1.15em; }
a { color: #0b57a4; }
li { margin: .3em 0; }
code, pre { font-family: Consolas, "DejaVu Sans Mono", monospace; font-size: .9em; }
code { background: #f1f3f5; padding: .1em .25em; word-wrap: break-word; }
pre { background: #f1f3f5; border-left: 4px solid #0b57a4; padding: .6em .8em; overflow-x: auto; }
pre code { padding: 0; background: none; font-size: 1em; word-wrap: normal; }
.table { overflow-x: auto; margin: 1em 0; }
table { border-collapse: collapse; width: 100%; }
th, td { border: 1px solid #c8c8c8; padding: .4em .6em; text-align: left; vertical-align: top; }
th { background: #f1f3f5; }
.option { white-space: nowrap; }
td code { background: none; padding: 0; }
td:first-child { min-width: 11em; }
.edition { color: #5f5f5f; margin-top: -.3em; }
.up { float: right; margin-left: 1em; font-size: 14px; font-weight: normal; text-decoration: none; }
@media (max-width: 40em) {
  body { padding: .5em .8em 2em; }
  ol, ul { padding-left: 1.4em; }
  .up { float: none; margin-left: .3em; }
  .table thead { display: none; }
  .table table, .table tbody, .table tr, .table td { display: block; }
  .table table { border-top: 1px solid #c8c8c8; }
  .table td { border-width: 0 1px; }
  .table td:first-child { background: #f1f3f5; border-top: 1px solid #c8c8c8; }
  .table tr:last-child td:last-child { border-bottom: 1px solid #c8c8c8; }
  .table td + td::before { content: attr(data-column) ": "; color: #5f5f5f; }
}
@media screen and (prefers-color-scheme: dark) {
  body { color: #e4e4e4; background: #1b1b1b; }
  a { color: #7db8f0; }
  h2 { border-color: #4a4a4a; }
  code, pre, th, .table td:first-child { background: #2a2d30; }
  td code { background: none; }
  th, td, .table table, .table td:first-child, .table tr:last-child td:last-child { border-color: #4a4a4a; }
  pre { border-color: #7db8f0; }
  .edition, .table td + td::before { color: #a8a8a8; }
}
@media print {
  body { font-size: 10pt; max-width: none; margin: 0; padding: 0; }
  a { color: inherit; text-decoration: none; }
  .up { display: none; }
  h2, h3 { page-break-after: avoid; }
  tr, pre { page-break-inside: avoid; }
  thead { display: table-header-group; }
  pre { white-space: pre-wrap; overflow: visible; border: 1px solid #c8c8c8; }
  .table { overflow: visible; }
  table { font-size: 9pt; }
  td:last-child code { overflow-wrap: anywhere; }
}
"""

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>%s</title>
<style>%s</style>
</head>
<body>
%s
</body>
</html>
"""


def check_links(body):
    """Every link must lead to a heading of the page: the reader has no other page."""
    names = set(re.findall(r'\bid="([^"]*)"', body))
    for target in re.findall(r'\bhref="([^"]*)"', body):
        if target[:1] != "#" or target[1:] not in names:
            sys.exit(f"!! the page has a link to {target}, which is not on it")


def framed(match):
    """A table in a frame. On a narrow screen its cells are stacked; each then shows the title of its column."""
    table = match[0]
    titles = itertools.cycle(re.sub(r"<[^>]*>", "", title) for title in re.findall(r"<th>(.*?)</th>", table))
    return '<div class="table">' + re.sub("<td>", lambda _: f'<td data-column="{next(titles)}">', table) + "</div>"


def unbroken(match):
    """Inline code whose options are not broken at their hyphens."""
    return "<code>" + re.sub(r"(?<![\w-])--?[a-z][a-z-]*:?", r'<span class="option">\g<0></span>', match[1]) + "</code>"


def html_page(text, edition):
    """The page as a string. Its title is the first heading. Headings below the contents lead back to them."""
    body = markdown.markdown(text, extensions=["fenced_code", "sane_lists", "tables", "toc"], output_format="html")
    body = re.sub(r"(?<!<pre>)<code>(.*?)</code>", unbroken, body)
    body = re.sub(r"<table>.*?</table>", framed, body, flags=re.DOTALL)
    above, contents, below = body.partition('<h2 id="contents">Contents</h2>')
    below = re.sub(r"</h[23]>", r' <a class="up" href="#contents">Contents</a>\g<0>', below)
    body = above + contents + below
    body = body.replace("</h1>", f'</h1>\n<p class="edition">{html.escape(edition)}</p>', 1)
    check_links(body)
    title = re.sub(r"<[^>]*>", "", re.search(r"<h1[^>]*>(.*?)</h1>", body)[1])
    return PAGE % (html.escape(html.unescape(title)), STYLE, body)


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as file:
        sys.stdout.write(html_page(file.read(), sys.argv[2]))
