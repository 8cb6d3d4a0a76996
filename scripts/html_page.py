"""Turns a Markdown page into one HTML file that needs nothing else: no network, no other file.

    html_page.py PAGE.md > PAGE.html
"""
import html
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
@media (max-width: 40em) {
  body { padding: .5em .8em 2em; }
  ol, ul { padding-left: 1.4em; }
}
@media print {
  body { font-size: 10pt; max-width: none; margin: 0; padding: 0; }
  a { color: inherit; text-decoration: none; }
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


def html_page(text):
    """The page as a string. Its title is the first heading."""
    body = markdown.markdown(text, extensions=["fenced_code", "sane_lists", "tables", "toc"], output_format="html")
    body = re.sub(r"<code>(--[a-z-]+)</code>", r'<code class="option">\1</code>', body)  # not broken at its hyphens
    body = body.replace("<table>", '<div class="table"><table>').replace("</table>", "</table></div>")
    check_links(body)
    title = re.sub(r"<[^>]*>", "", re.search(r"<h1[^>]*>(.*?)</h1>", body)[1])
    return PAGE % (html.escape(html.unescape(title)), STYLE, body)


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as file:
        sys.stdout.write(html_page(file.read()))
