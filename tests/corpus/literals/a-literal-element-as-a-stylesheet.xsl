<out xsl:version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"><b><xsl:value-of select="count(//book)"/></b></out>
