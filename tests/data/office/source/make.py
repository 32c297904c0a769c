import datetime
import docx
import openpyxl

report = docx.Document()
report.core_properties.title = "Report on the bindery"
report.core_properties.author = "opcmodel"
report.add_heading("Report on the bindery", 0)
report.add_paragraph("The new press folds eighty sheets a minute; the old one folded thirty.")
report.add_heading("Open points", 1)
for point in ("Thread runs out in May", "The guillotine needs a new blade"):
    report.add_paragraph(point, style="List Bullet")
report.save("report.docx")

book = openpyxl.Workbook()
sheet = book.active
sheet.title = "Stock"
for row in (("Material", "Kilograms", "Counted"), ("Grey cloth", 31.5, datetime.date(2024, 3, 1)),
            ("Board", 240, datetime.date(2024, 3, 2))):
    sheet.append(row)
sheet["B4"] = "=SUM(B2:B3)"
book.create_sheet("Orders").append(("None",))
book.save("table.xlsx")
