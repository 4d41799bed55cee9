<stylesheet version="1.0" xmlns="http://www.w3.org/1999/XSL/Transform">
  <output method="text"/>
  <template match="/"><value-of select="count(//book)"/></template>
</stylesheet>
