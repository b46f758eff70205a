#!/usr/bin/python3
"""browser_test.py MIFREAD FOLDER...: has a browser show the pages of all documents in the folders, and measures them.

Lengths are CSS pixels, 96 to the inch. The browser sees files only: every page is on its own.
"""
import base64
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

import html5lib
from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

TOLERANCE = 2
COLUMN = 624  # width of the text column of a letter page with margins of an inch
FLAGS = ('--headless=new --no-sandbox --disable-gpu --disable-quic --no-first-run --disable-background-networking '
         '--disable-component-update --disable-sync --disable-dev-shm-usage --hide-scrollbars').split()

# Finds a text, from one word to another, and returns its lines, from the left edge of the text column, without the
# blanks that hang over their ends.
FIND = '''
const style = getComputedStyle(document.body);
const edge = document.body.getBoundingClientRect().left + parseFloat(style.paddingLeft);
const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
for (let node; node = walker.nextNode();) {
    const start = node.data.indexOf(arguments[0]);
    if (start < 0) continue;
    const range = document.createRange();
    range.setStart(node, start);
    range.setEnd(node, node.data.indexOf(arguments[1], start) + arguments[1].length);
    return [...range.getClientRects()].filter((r, i, all) => i === 0 || r.bottom !== all[i - 1].bottom)
        .map(r => ({left: r.left - edge, right: r.right - edge, bottom: r.bottom}));
}
'''
# The edges of all elements that a selector finds, from the left edge of the text column.
BOXES = '''
const style = getComputedStyle(document.body);
const edge = document.body.getBoundingClientRect().left + parseFloat(style.paddingLeft);
return [...document.querySelectorAll(arguments[0])].map(element => {
    const r = element.getBoundingClientRect();
    return {left: r.left - edge, width: r.width, height: r.height};
});
'''
# A property's computed value for the element around a text.
STYLE = '''
const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
for (let node; node = walker.nextNode();) {
    if (node.data.includes(arguments[0])) return getComputedStyle(node.parentElement)[arguments[1]];
}
'''
# Words that the window cuts, but for those in tables, which scroll.
CUT = '''
const words = [];
const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
for (let node; node = walker.nextNode();) {
    if (node.parentElement.closest('.table')) continue;
    for (const word of node.data.matchAll(/\\S+/g)) {
        const range = document.createRange();
        range.setStart(node, word.index);
        range.setEnd(node, word.index + word[0].length);
        if ([...range.getClientRects()].some(r => r.right > innerWidth + 1 || r.left < -1)) words.push(word[0]);
    }
}
return words;
'''


class Pages(unittest.TestCase):
    mifread = ''
    folders = []

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.scratch.cleanup)
        cls.pages = {}
        for document in sorted(path for folder in cls.folders for path in pathlib.Path(folder).glob('*.mif')):
            page = pathlib.Path(cls.scratch.name) / (document.stem + '.html')
            result = subprocess.run([cls.mifread, 'html', document, '-o', page], capture_output=True, text=True)
            assert page.exists(), result.stderr
            cls.pages[document.stem] = page

        options = Options()
        for flag in FLAGS + [f'--user-data-dir={cls.scratch.name}/browser']:
            options.add_argument(flag)
        options.set_capability('goog:loggingPrefs', {'browser': 'ALL', 'performance': 'ALL'})
        cls.browser = webdriver.Chrome(options=options, service=Service('/usr/bin/chromedriver'))
        cls.addClassCleanup(cls.browser.quit)

    def show(self, name, width=1000):
        self.browser.execute_cdp_cmd('Emulation.setDeviceMetricsOverride',
                                     {'width': width, 'height': 800, 'deviceScaleFactor': 1, 'mobile': width < 500})
        self.browser.get(self.pages[name].as_uri())

    def find(self, first, last=None):
        lines = self.browser.execute_script(FIND, first, last or first)
        self.assertTrue(lines, first)
        return lines

    def boxes(self, selector):
        return self.browser.execute_script(BOXES, selector)

    def near(self, pixels, inches, what):
        self.assertAlmostEqual(pixels, inches * 96, delta=TOLERANCE, msg=what)

    def style(self, text, name):
        return self.browser.execute_script(STYLE, text, name)

    def test_indents(self):
        self.show('layout')
        self.near(self.find('first')[0]['left'], 0.25, 'first line')
        lines = self.find('hangtext', 'hangend')
        self.assertGreaterEqual(len(lines), 2)
        for line in lines:
            self.near(line['left'], 0.75, 'hanging line')
        for line in lines[:-1]:
            self.near(line['right'], 5.5, 'justified line')
        self.near(self.find('loose')[0]['right'], 6.0, 'right alignment')
        self.assertEqual(self.style('loose', 'lineHeight'), '38.4px')

    def test_tab_stops(self):
        self.show('layout')
        self.near(self.find('hangtext')[0]['left'], 0.75, 'left tab of a hanging indent')
        self.near(self.find('lefttab')[0]['left'], 1.5, 'left tab')
        self.near((self.find('midstart')[0]['left'] + self.find('midend')[0]['right']) / 2, 3, 'centred tab')
        self.near(self.find('righttab')[0]['right'], 6.0, 'right tab')
        pushed = self.find('pushed')[0]['left'] - self.find('close')[0]['right']
        self.assertTrue(0 < pushed < 8, 'no room to centre')
        number = self.find('pagenumber')[0]
        self.near(number['right'], 6.5, 'right tab behind two lines')
        self.assertAlmostEqual(number['bottom'], self.find('titleend')[0]['bottom'], delta=1)
        self.assertAlmostEqual(self.find('lefttab')[0]['bottom'], self.find('righttab')[0]['bottom'], delta=1)
        self.assertIn('start\tlefttab\tmidstartmidend\trighttab', self.text(), 'tabs in copied text')

    def test_table(self):
        self.show('layout')
        table, = self.boxes('table')
        first, second = self.boxes('td')
        self.near(table['left'], 0, 'left edge')
        self.near(first['width'], 1.5, 'first column')
        self.near(second['left'] - first['left'], 1.5, 'first column')
        self.near(second['width'], 2.25, 'second column')
        scroller, = self.boxes('.table')
        self.assertLessEqual(table['width'], scroller['width'], 'nothing to scroll')

    def test_pictures(self):
        self.show('layout')
        inline, alone = self.boxes('img')
        link, = self.boxes('a')
        for box, width, height in (inline, 1, 0.5), (alone, 2, 1), (link, 3, 0.5):
            self.near(box['width'], width, 'width')
            self.near(box['height'], height, 'height')
        self.assertTrue(self.browser.execute_script('return [...document.images].every(i => i.naturalWidth == 2)'))
        self.assertEqual(self.browser.execute_script('return document.querySelector("a").download'), '3.txt')
        names = self.browser.execute_script('return [...document.images].map(i => i.alt)')
        self.assertEqual(names, ['1.png', '2.png'])
        address = self.browser.execute_script('return document.querySelector("a").href')
        self.assertEqual(base64.b64decode(address.split(',')[1]), b'Plain words, saved as they are.')

    def test_characters(self):
        self.show('layout')
        for text, name, value in (
                ('bold', 'fontWeight', '700'), ('italic', 'fontStyle', 'italic'),
                ('struck', 'textDecorationLine', 'underline line-through'), ('super', 'verticalAlign', 'super'),
                ('lower', 'verticalAlign', 'sub'), ('smallcaps', 'fontVariantCaps', 'small-caps'),
                ('upper', 'textTransform', 'uppercase'), ('red', 'color', 'rgb(255, 0, 0)'),
                ('cellone', 'fontWeight', '400'), ('cellone', 'color', 'rgb(0, 0, 0)'), ('super', 'fontSize', '12px'),
                ('bold', 'fontSize', '16px')):
            self.assertEqual(self.style(text, name), value, text)

    def test_hostile_document(self):
        self.show('layout')
        for log in 'browser', 'performance':
            self.browser.get_log(log)
        self.show('hostile')
        text = self.text()
        for expected in ('</p><script>window.hit = "text"</script>', '<!-- ]]> <style> <svg onload=x>',
                         '<img src=x onerror="window.hit = 1"> &lt; &amp; &#60;',
                         'bell \ufffd escape \ufffd delete \u2421 newline \ufffd end',
                         '&lt;script&gt; window.hit = "variable"',
                         '</td></table><script>window.hit = "cell"</script>', 'text/html'):
            self.assertIn(expected, text)
        self.assertIsNone(self.browser.execute_script('return window.hit'))
        self.assertEqual(self.browser.execute_script('return [...document.images].map(i => i.naturalWidth)'), [9])
        tags = set(self.browser.execute_script('return [...document.all].map(e => e.localName)'))
        known = 'html head meta title style body p span br img a div table colgroup col tbody tr td'
        self.assertLessEqual(tags, set(known.split()))
        sources = self.browser.execute_script('return [...document.images].map(i => i.src)')
        self.assertEqual([source.split(',')[0] for source in sources], ['data:image/svg+xml;base64'])
        names = set(self.browser.execute_script('return [...document.all].flatMap(e => e.getAttributeNames())'))
        self.assertLessEqual(names, set('charset http-equiv content name class style alt src download href'.split()))
        self.assertEqual(self.browser.get_log('browser'), [])
        self.assertEqual([url for url in self.requests() if not url.startswith('data:')],
                         [self.pages['hostile'].as_uri()])

    def test_narrow_tab_stops(self):
        for width in 500, 390, 360:
            column = width - 24
            self.show('report', width)
            station, number, date, readings, month, ppm = (
                self.find(text)[0] for text in ('Hjelmsund', 'No. 3', '2 April 1998', 'CO', 'full month', '\u00a0ppm'))
            for text in number, date:
                self.assertEqual(text['bottom'], station['bottom'], width)
            self.assertLess(self.find('Station')[0]['right'], number['left'])
            self.assertAlmostEqual(date['right'], column, delta=TOLERANCE)
            self.assertLess(month['bottom'] - readings['bottom'], 10)
            self.assertEqual(self.find('364')[0]['bottom'], ppm['bottom'])
            if width == 500:
                self.assertAlmostEqual((number['left'] + number['right']) / 2, column / 2, delta=TOLERANCE)
            self.show('layout', width)
            self.assertEqual(self.find('Kinds of')[0]['bottom'], self.find('pageof')[0]['bottom'], width)
            self.assertAlmostEqual(self.find('pageof')[0]['right'], column, delta=16)

    def test_narrow_windows(self):
        for name in self.pages:
            self.show(name, 360)
            width = self.browser.execute_script('return document.documentElement.scrollWidth')
            self.assertLessEqual(width, 360, name)
            self.assertEqual(self.browser.execute_script(CUT), [], name)

    def test_print(self):
        self.show('layout')
        pdf = base64.b64decode(self.browser.execute_cdp_cmd('Page.printToPDF', {'preferCSSPageSize': True})['data'])
        sizes = re.findall(rb'/MediaBox \[0 0 ([0-9.]+) ([0-9.]+)\]', pdf)
        self.assertEqual([(round(float(width)), round(float(height))) for width, height in sizes], [(612, 792)])

    def test_validity(self):
        for name, page in self.pages.items():
            with self.subTest(name):
                html5lib.HTMLParser(strict=True).parse(page.read_bytes(), transport_encoding=None)

    def text(self):
        return self.browser.execute_script('return document.body.innerText')

    def requests(self):
        messages = [json.loads(entry['message'])['message'] for entry in self.browser.get_log('performance')]
        return [message['params']['request']['url'] for message in messages
                if message['method'] == 'Network.requestWillBeSent']


if __name__ == '__main__':
    Pages.mifread, *Pages.folders = sys.argv[1:]
    unittest.main(argv=sys.argv[:1])
