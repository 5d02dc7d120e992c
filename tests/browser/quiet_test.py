"""No page says anything on the console, or asks for anything from anywhere."""

import json
import unittest

from page import PAGES, PageTest

WATCH = """
    window.violations = [];
    document.addEventListener('securitypolicyviolation',
      ({ violatedDirective, blockedURI }) => window.violations.push(`${violatedDirective} ${blockedURI}`));
    window.addEventListener('error', ({ message }) => window.violations.push(message));
    window.addEventListener('unhandledrejection',
      ({ reason }) => window.violations.push(String(reason)));"""


class Quiet(PageTest):
    def setUp(self):
        super().setUp()
        script = self.browser.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": WATCH})
        self.addCleanup(self.browser.execute_cdp_cmd, "Page.removeScriptToEvaluateOnNewDocument", script)
        self.browser.get("about:blank")
        self.console()
        self.browser.get_log("performance")

    def requests(self, page):
        """Addresses that were asked for since the last call, but those that lie in the page itself."""
        events = [json.loads(line["message"])["message"] for line in self.browser.get_log("performance")]
        asked = [event["params"]["request"]["url"] for event in events
                 if event["method"] == "Network.requestWillBeSent"]
        asked += self.run_script("return performance.getEntriesByType('resource').map(({ name }) => name)")
        self.assertIn(page.as_uri(), asked, "the page itself is not in the log")
        return [url for url in asked if url != page.as_uri() and not url.startswith(("data:", "blob:"))]

    def use(self):
        """What people do with a page."""
        for name in ("view-x", "reset-view", "show-labels", "show-angles", "copy-input", "copy-xyz",
                     "save-svg", "save-png", "reset-pose"):
            self.press(name)
        self.set_values({"r": 5.5, "theta": 80}, "slider")
        self.set_values({"theta": 400}, "field")
        self.run_script("""
            document.querySelectorAll('select').forEach((select) => {
              select.selectedIndex = select.options.length - 1;
              select.dispatchEvent(new Event('change'));
            });
            document.querySelector('details').open = true;""")
        if self.by_id("poses").is_displayed():
            for name in ("next", "play", "previous"):
                self.press(name)
        self.settle()

    def test_pages(self):
        for name, make in PAGES.items():
            with self.subTest(name):
                page = make()
                self.open(page)
                self.use()
                self.assertEqual(self.requests(page), [])
                self.assertEqual(self.run_script("return window.violations"), [])
                self.assertEqual(self.console(), [])

    def test_that_a_request_would_be_noticed(self):
        page = PAGES["pair"]()
        self.open(page)
        self.run_script("new Image().src = 'https://picture.invalid/a.png'; console.log('said');")
        self.changed(lambda: self.run_script("return window.violations"), [])
        self.assertTrue(any("said" in line for line in self.console()))

    def test_that_scripts_of_others_are_refused(self):
        page = PAGES["pair"]()
        self.open(page)
        self.run_script("""
            const script = document.createElement('script');
            script.textContent = 'window.ran = true';
            document.body.append(script);""")
        self.changed(lambda: self.run_script("return window.violations"), [])
        self.assertIsNone(self.run_script("return window.ran"))
        self.console()


if __name__ == "__main__":
    unittest.main()
