var indexSectionsWithContent =
{
  0: "r",
  1: "r"
};

var indexSectionNames =
{
  0: "all",
  1: "pages"
};

var indexSectionLabels =
{
  0: "Todo",
  1: "Páginas"
};

